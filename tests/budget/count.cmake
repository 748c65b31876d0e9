# count.cmake: runs `operations` under callgrind and fails where an operation takes more
# instructions than budgets.txt allows.
#
# usage: cmake -DVALGRIND=<program> -DOPERATIONS=<program> -DFOLDER=<for callgrind's files>
#              -P count.cmake
cmake_minimum_required(VERSION 3.25)
set(repetitions 1000)  # as in operations.cpp

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
execute_process(
  COMMAND ${VALGRIND} --tool=callgrind --callgrind-out-file=${FOLDER}/counts ${OPERATIONS}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "valgrind ended with ${result}:\n${output}")
endif()

# Each file of callgrind is one part: its name in the line "desc: Trigger: Client Request: <name>",
# its instructions in the line "summary: <number>".
file(GLOB files ${FOLDER}/counts.*)
set(names)
foreach(file IN LISTS files)
  file(STRINGS ${file} trigger REGEX "^desc: Trigger: Client Request: " ENCODING UTF-8)
  file(STRINGS ${file} summary REGEX "^(summary|totals): " LIMIT_COUNT 1)
  if(trigger AND summary)
    string(REGEX REPLACE "^desc: Trigger: Client Request: " "" name "${trigger}")
    string(REGEX REPLACE "^[a-z]+: ([0-9]+).*" "\\1" count "${summary}")
    list(APPEND names "${name}")
    string(MAKE_C_IDENTIFIER "${name}" id)
    set(count_${id} ${count})
  endif()
endforeach()
if(NOT DEFINED count_nothing)
  message(FATAL_ERROR "operations did not count \"nothing\":\n${output}")
endif()

set(report "taken\tbudget\toperation\n")
set(failures)
set(budgeted nothing)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/budgets.txt lines REGEX "^[0-9]" ENCODING UTF-8)
foreach(line IN LISTS lines)
  if(NOT line MATCHES "^([0-9]+) +(.+)$")
    message(FATAL_ERROR "budgets.txt: not a number and a name: ${line}")
  endif()
  set(budget ${CMAKE_MATCH_1})
  set(name "${CMAKE_MATCH_2}")
  list(APPEND budgeted "${name}")
  string(MAKE_C_IDENTIFIER "${name}" id)
  if(NOT DEFINED count_${id})
    list(APPEND failures "${name}: not counted")
    continue()
  endif()
  math(EXPR count "(${count_${id}} - ${count_nothing} + ${repetitions} / 2) / ${repetitions}")
  string(APPEND report "${count}\t${budget}\t${name}\n")
  if(count GREATER budget)
    list(APPEND failures "${name}: ${count} instructions, ${budget} allowed")
  endif()
endforeach()
foreach(name IN LISTS names)
  if(NOT name IN_LIST budgeted)
    string(MAKE_C_IDENTIFIER "${name}" id)
    math(EXPR count "(${count_${id}} - ${count_nothing} + ${repetitions} / 2) / ${repetitions}")
    list(APPEND failures "${name}: ${count} instructions, no budget")
  endif()
endforeach()

message("${report}")
if(failures)
  list(JOIN failures "\n" failures)
  message(FATAL_ERROR "${failures}")
endif()
