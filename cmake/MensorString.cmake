# Chooses the class behind string_t and generates mensor/string_type.h, the one header that names it.
#
#   MENSOR_STRING=auto      (default) tiny-utf8 where its CMake package is found, else our own class
#   MENSOR_STRING=tinyutf8  tiny-utf8, or an error
#   MENSOR_STRING=own       mensor::utf8_string
#
# Sets MENSOR_STRING_CHOICE to tinyutf8 or own. With tinyutf8 the library links tinyutf8::tinyutf8
# publicly; with own it compiles and installs utf8_string. The two builds differ in their ABI, so
# the installed package remembers the choice.
include_guard(DIRECTORY)

set(MENSOR_STRING "auto" CACHE STRING "The class behind string_t: auto, tinyutf8 or own")
set_property(CACHE MENSOR_STRING PROPERTY STRINGS auto tinyutf8 own)

if(NOT MENSOR_STRING MATCHES "^(auto|tinyutf8|own)$")
  message(FATAL_ERROR "MENSOR_STRING is \"${MENSOR_STRING}\": it must be auto, tinyutf8 or own")
endif()

set(MENSOR_STRING_CHOICE own)
if(NOT MENSOR_STRING STREQUAL "own")
  find_package(tinyutf8 CONFIG QUIET)
  if(TARGET tinyutf8::tinyutf8)
    set(MENSOR_STRING_CHOICE tinyutf8)
  elseif(MENSOR_STRING STREQUAL "tinyutf8")
    message(FATAL_ERROR "MENSOR_STRING is tinyutf8, but no CMake package tinyutf8 with the target "
      "tinyutf8::tinyutf8 was found: set tinyutf8_DIR or CMAKE_PREFIX_PATH, or choose own")
  endif()
endif()

if(MENSOR_STRING_CHOICE STREQUAL "tinyutf8")
  set(MENSOR_STRING_INCLUDE "<tinyutf8/tinyutf8.h>")
  set(MENSOR_STRING_CLASS "tiny_utf8::utf8_string")
else()
  set(MENSOR_STRING_INCLUDE "\"mensor/utf8_string.h\"")
  set(MENSOR_STRING_CLASS "utf8_string")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/../src/mensor/string_type.h.in
  ${PROJECT_BINARY_DIR}/include/mensor/string_type.h @ONLY)
message(STATUS "string_t is ${MENSOR_STRING_CLASS}")
