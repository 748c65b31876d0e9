# cmake -DSOURCE=<mensor> -DWORK=<folder> -DGENERATOR=<name> -DCOMPILER=<c++> -P projects_test.cmake:
# configures mensor as a part of another project, alone, and from the files of the Conan recipe. Nothing
# is built.
include(${CMAKE_CURRENT_LIST_DIR}/../expectations.cmake)
file(REMOVE_RECURSE ${WORK})
unset(ENV{CMAKE_BUILD_TYPE})

# configures(<name> <source> <text> <option>...): configuring prints <text>, as one line.
macro(configures name source text)
  expect_output(${name} "${text}" -S ${source} -B ${WORK}/${name} -DCMAKE_CXX_COMPILER=${COMPILER} ${ARGN})
endmacro()

# caches(<name> <variable> <value>): the cache of the configured folder has this value.
function(caches name variable value)
  load_cache(${WORK}/${name} READ_WITH_PREFIX cached_ ${variable})
  if(NOT "${cached_${variable}}" STREQUAL "${value}")
    message("${name}: ${variable} is \"${cached_${variable}}\", not \"${value}\"")
    count_failure()
  endif()
endfunction()

# As a part of another project, with all options that it may set.
set(parent ${CMAKE_CURRENT_LIST_DIR}/parent)
set(part -DMENSOR_SOURCE=${SOURCE} -DMENSOR_EXAMPLES=ON -DMENSOR_TOOLS=ON)
foreach(has nothing alias imported)
  configures(part_${has} ${parent} "all is well" ${part} -DHAS=${has})
endforeach()
configures(part_tests ${parent} "all is well" ${part} -DMENSOR_TESTS=ON -DMENSOR_BENCHMARKS=ON)
configures(part_static ${parent} "mensor is a shared library only" ${part} -DBUILD_SHARED_LIBS=OFF)

# Alone, with the defaults of "cmake -B build": optimised, and without the tests and options of
# developers.
configures(alone ${SOURCE} "Configuring done")
caches(alone CMAKE_BUILD_TYPE Release)
caches(alone MENSOR_TESTS OFF)
caches(alone MENSOR_WERROR OFF)
configures(alone_debug ${SOURCE} "Configuring done" -DCMAKE_BUILD_TYPE=Debug)
caches(alone_debug CMAKE_BUILD_TYPE Debug)
configures(alone_static ${SOURCE} "mensor is a shared library only" -DBUILD_SHARED_LIBS=OFF)

# From the files that the Conan recipe exports, with the options that it sets.
file(READ ${SOURCE}/conanfile.py recipe)
string(REGEX MATCH "exports_sources = \\(?([^)\n]*\n?[^)\n]*)" found "${recipe}")
string(REGEX MATCHALL "\"[^\"]+\"" patterns "${CMAKE_MATCH_1}")
if(NOT patterns)
  message(FATAL_ERROR "conanfile.py has no exports_sources")
endif()
foreach(pattern IN LISTS patterns)
  string(REPLACE "\"" "" pattern ${pattern})
  if(pattern MATCHES "^([^*]*)/\\*$")
    file(GLOB_RECURSE files RELATIVE ${SOURCE} ${SOURCE}/${CMAKE_MATCH_1}/*)
  else()
    set(files ${pattern})
  endif()
  foreach(file IN LISTS files)
    cmake_path(GET file PARENT_PATH folder)
    file(COPY ${SOURCE}/${file} DESTINATION ${WORK}/taken/${folder})
  endforeach()
endforeach()
string(REGEX MATCHALL "\"MENSOR_[A-Z]+\": \"[A-Z]+\"" options "${recipe}")
list(TRANSFORM options REPLACE "\"(.*)\": \"(.*)\"" "-D\\1=\\2")
configures(conan ${WORK}/taken "Configuring done" ${options} -DCMAKE_BUILD_TYPE=Release)

# The recipe reads the version from the sources and has no copy of it.
file(STRINGS ${SOURCE}/conanfile.py versions REGEX "[0-9]+\\.[0-9]+\\.[0-9]+")
if(versions)
  message("conanfile.py has a version of its own: ${versions}")
  math(EXPR failures "${failures} + 1")
endif()

report_failures()
