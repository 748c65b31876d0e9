# expectations.cmake: counts the failed expectations of a script about configuring mensor. A script includes it and
# calls report_failures() at its end.
set(failures 0)

# For the functions below and those of the scripts: counts a failure in the scope of the caller.
macro(count_failure)
  math(EXPR count "${failures} + 1")
  set(failures ${count} PARENT_SCOPE)
endmacro()

# expect_output(<name> <text> <argument>...): "cmake -G <generator> <argument>..." prints <text>, as one line.
function(expect_output name text)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} ${ARGN}
    OUTPUT_VARIABLE output ERROR_VARIABLE output)
  string(REGEX REPLACE "[ \n]+" " " output "${output}")
  string(FIND "${output}" "${text}" found)
  if(found EQUAL -1)
    message("${name}: expected \"${text}\" in: ${output}")
    count_failure()
  endif()
endfunction()

macro(report_failures)
  if(failures)
    message(FATAL_ERROR "${failures} expectations failed")
  endif()
endmacro()
