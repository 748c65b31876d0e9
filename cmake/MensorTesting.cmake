# mensor_test(<file>_test.cpp): a test program of that name. Each of its tests becomes a test of
# its own for ctest and so runs in a fresh process: the tables of the library live as long as the
# process, and much can only be seen when they are new.
include(GoogleTest)

# Code of tests alone is not optimised, which nearly halves the time of compiling it. The library, the
# tools, the examples and the transcript are built as a user builds them.
function(mensor_quickly_built target)
  target_compile_options(${target} PRIVATE -O0)
endfunction()

function(mensor_test file)
  cmake_path(GET file STEM name)
  add_executable(${name} ${file})
  target_link_libraries(${name} PRIVATE mensor::mensor mensor_test_support)
  target_precompile_headers(${name} REUSE_FROM mensor_test_support)
  mensor_warnings(${name})
  mensor_quickly_built(${name})
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()

# mensor_starts_test(<name> <program> [<argument>...]): starts the program 1000 times; 200 times under a
# sanitizer and 100 times in an emulator, which are slow. Each start must end with status 0 and print nothing.
function(mensor_starts_test name)
  set(starts 1000)
  if(CMAKE_CROSSCOMPILING)
    set(starts 100)
  elseif(CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    set(starts 200)
  endif()
  add_test(NAME ${name}
    COMMAND ${PROJECT_SOURCE_DIR}/tests/support/starts.sh ${starts} ${CMAKE_CROSSCOMPILING_EMULATOR} ${ARGN})
  set_tests_properties(${name} PROPERTIES TIMEOUT 900)
endfunction()
