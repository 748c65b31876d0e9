# Functions for the folders of tests.
#
# The label of a test says what kind it is. scripts/test chooses the tests of a preset by label, and the
# target mensor_tests_<label> builds what they need.
#   unit         the test programs of the sources
#   behaviour    the test programs of tests/behaviour: threads, loading, exit, odd text
#   memory       test programs that let each allocation fail, or count the heap over very many requests
#   sweep        test programs that take long, because they try very many numbers
#   starts       programs that are started very often
#   vectors      loops with narrower vectors than the processor has
#   abi, budget, certificates, docs, examples, fuzz, gdb, package, statics, tool, transcript
#                the tests of a folder
# Tests without a label run only where all tests run.

# Compiles a target of tests without optimisation, which nearly halves the time of compiling it. The
# sanitizer of undefined behaviour does not check it, which saves a third of that time in its build.
# Libraries, tools, examples and the transcript are built as a user builds them, and the sanitizers
# check them.
function(mensor_quickly_built target)
  target_compile_options(${target} PRIVATE -O0 -fno-sanitize=undefined)
endfunction()

function(mensor_built_for_tests label)
  if(NOT TARGET mensor_tests_${label})
    add_custom_target(mensor_tests_${label})
  endif()
  if(ARGN)
    add_dependencies(mensor_tests_${label} ${ARGN})
  endif()
endfunction()

# mensor_test(<file>_test.cpp [NAME <name>] [LABEL <label>]): adds a test program, which is one test for
# ctest. It runs each of its tests in a process of its own (tests/support/main.cpp). Its name is that of
# the file if none is given.
function(mensor_test file)
  cmake_parse_arguments(PARSE_ARGV 1 test "" "NAME;LABEL" "")
  if(NOT test_LABEL)
    set(test_LABEL unit)
  endif()
  cmake_path(GET file STEM name)
  if(test_NAME)
    set(name ${test_NAME})
  endif()
  add_executable(${name} ${file})
  target_link_libraries(${name} PRIVATE mensor::mensor mensor_test_support)
  target_precompile_headers(${name} REUSE_FROM mensor_test_support)
  mensor_warnings(${name})
  mensor_quickly_built(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS ${test_LABEL} TIMEOUT 3600)
  if(test_LABEL MATCHES "memory|sweep")
    set_tests_properties(${name} PROPERTIES COST 100)  # ctest starts the longest first
  endif()
  mensor_built_for_tests(${test_LABEL} ${name})
endfunction()

# mensor_tests_are(<label>): labels all tests of this folder, including those added after the call.
macro(mensor_tests_are label)
  cmake_language(DEFER CALL _mensor_tests_are ${label})
endmacro()

function(_mensor_tests_are label)
  get_property(tests DIRECTORY PROPERTY TESTS)
  if(tests)
    set_tests_properties(${tests} PROPERTIES LABELS ${label})
    mensor_built_for_tests(${label})
  endif()
  get_property(targets DIRECTORY PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type MATCHES "EXECUTABLE|LIBRARY")
      mensor_built_for_tests(${label} ${target})
    endif()
  endforeach()
endfunction()

# mensor_starts_test(<name> <program> [<argument>...]): starts the program 200 times, and 1000 times if all
# tests are run; 200 times under a sanitizer and 100 times in an emulator, which are slow. Each start must end
# with status 0 and print nothing.
function(mensor_starts_test name)
  set(starts 200 1000)
  if(CMAKE_CROSSCOMPILING)
    set(starts 100 100)
  elseif(CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    set(starts 200 200)
  endif()
  add_test(NAME ${name}
    COMMAND ${PROJECT_SOURCE_DIR}/tests/support/starts.sh ${starts} ${CMAKE_CROSSCOMPILING_EMULATOR} ${ARGN})
  set_tests_properties(${name} PROPERTIES LABELS starts TIMEOUT 900)
endfunction()
