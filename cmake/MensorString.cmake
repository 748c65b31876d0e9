# Chooses the class of string_t and generates mensor/string_type.h, the one header that names it.
#
#   MENSOR_STRING=own       (default) mensor::utf8_string
#   MENSOR_STRING=tinyutf8  tiny-utf8's utf8_string, or an error if its CMake package is not found
#
# The two builds differ in their ABI. So the caller chooses, not the packages that happen to be installed,
# and the installed package records the choice. With tinyutf8 the library links tinyutf8::tinyutf8 publicly;
# with own it compiles and installs utf8_string.
include_guard(DIRECTORY)

set(MENSOR_STRING "own" CACHE STRING "The class behind string_t: own or tinyutf8")
set_property(CACHE MENSOR_STRING PROPERTY STRINGS own tinyutf8)

if(MENSOR_STRING STREQUAL "own")
  set(MENSOR_STRING_INCLUDE "\"mensor/utf8_string.h\"")
  set(MENSOR_STRING_CLASS "utf8_string")
elseif(MENSOR_STRING STREQUAL "tinyutf8")
  find_package(tinyutf8 CONFIG QUIET GLOBAL)
  if(NOT TARGET tinyutf8::tinyutf8)
    message(FATAL_ERROR "MENSOR_STRING is tinyutf8, but no CMake package tinyutf8 with the target "
      "tinyutf8::tinyutf8 was found: set tinyutf8_DIR or CMAKE_PREFIX_PATH, or choose own")
  endif()
  set(MENSOR_STRING_INCLUDE "<tinyutf8/tinyutf8.h>")
  set(MENSOR_STRING_CLASS "tiny_utf8::utf8_string")
else()
  message(FATAL_ERROR "MENSOR_STRING is \"${MENSOR_STRING}\": it must be own or tinyutf8")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/../src/mensor/string_type.h.in
  ${PROJECT_BINARY_DIR}/include/mensor/string_type.h @ONLY)
message(STATUS "string_t is ${MENSOR_STRING_CLASS}")
