# linear.cmake: fails if a text ten times as long needs more than twenty times the instructions. Ten times
# are for the text itself. The rest is for tables that grow with its factors, and for the exponents, which
# are tried first if their sum exceeds 4096. Quadratic time would be a hundred times.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/counts.cmake)

set(report)
set(failures)
foreach(name IN LISTS names)
  string(REGEX MATCH "^(.*) ([0-9]+)$" matched "${name}")
  set(shorter "${CMAKE_MATCH_1} ${CMAKE_MATCH_2}")
  set(longer "${shorter}0")
  string(MAKE_C_IDENTIFIER "${shorter}" of_shorter)
  string(MAKE_C_IDENTIFIER "${longer}" of_longer)
  string(APPEND report "${count_${of_shorter}}\t${name}\n")
  if(DEFINED count_${of_longer})
    math(EXPR most "${count_${of_shorter}} * 20")
    if(count_${of_longer} GREATER most)
      list(APPEND failures
        "${longer}: ${count_${of_longer}} instructions, ${count_${of_shorter}} for a tenth of it")
    endif()
  endif()
endforeach()

message("${report}")
list(LENGTH names count)
if(count LESS 40)
  message(FATAL_ERROR "the output of texts has only ${count} counts:\n${output}")
endif()
if(failures)
  list(JOIN failures "\n" failures)
  message(FATAL_ERROR "${failures}")
endif()
