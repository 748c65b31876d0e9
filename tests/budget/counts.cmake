# counts.cmake: runs PROGRAM under callgrind. Sets `names` to the names of the counts, and count_<name
# as an identifier> to each count. Other scripts include it.
#
# usage: cmake -DVALGRIND=<program> -DPROGRAM=<program> -DFOLDER=<for callgrind's files> -P <script>
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
execute_process(
  COMMAND ${VALGRIND} --tool=callgrind --callgrind-out-file=${FOLDER}/counts ${PROGRAM}
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
