# cmake -DBINARY_DIR=<folder> -DGENERATOR=<name> -P choice_test.cmake: tests the values of
# MENSOR_STRING, with and without an installed package of tiny-utf8.
include(${CMAKE_CURRENT_LIST_DIR}/../expectations.cmake)

# expect(<folder> <text> <options>...): configuring prints <text>, as one line.
macro(expect name text)
  expect_output(${name} "${text}" --fresh -S ${CMAKE_CURRENT_LIST_DIR}/choice -B ${BINARY_DIR}/${name}
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF ${ARGN})
endmacro()

# expect_header(<folder> <include> <class>): the generated header takes the class from there.
function(expect_header name include class)
  file(READ ${BINARY_DIR}/${name}/include/mensor/string_type.h header)
  string(FIND "${header}" "\n#include ${include}\n" include_found)
  string(FIND "${header}" "\nusing string_t = ${class};\n" class_found)
  if(include_found EQUAL -1 OR class_found EQUAL -1)
    message("${name}: expected ${class} from ${include} in: ${header}")
    count_failure()
  endif()
endfunction()

set(with -Dtinyutf8_DIR=${CMAKE_CURRENT_LIST_DIR})
set(without -DCMAKE_DISABLE_FIND_PACKAGE_tinyutf8=ON)

expect(default_with "string_t is utf8_string" ${with})
expect_header(default_with "\"mensor/utf8_string.h\"" utf8_string)
expect(default_without "string_t is utf8_string" ${without})
expect(own_with "string_t is utf8_string" ${with} -DMENSOR_STRING=own)
expect(tinyutf8_with "string_t is tiny_utf8::utf8_string" ${with} -DMENSOR_STRING=tinyutf8)
expect_header(tinyutf8_with <tinyutf8/tinyutf8.h> tiny_utf8::utf8_string)
expect(tinyutf8_without "MENSOR_STRING is tinyutf8, but no CMake package tinyutf8"
  ${without} -DMENSOR_STRING=tinyutf8)
foreach(other auto std)
  expect(${other} "MENSOR_STRING is \"${other}\": it must be own or tinyutf8"
    ${with} -DMENSOR_STRING=${other})
endforeach()

report_failures()
