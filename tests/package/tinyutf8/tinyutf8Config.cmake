# Replaces the CMake package of tiny-utf8, so that the build with it can be tested without it. The class
# is written for these tests (include/tinyutf8/tinyutf8.h).
if(NOT TARGET tinyutf8::tinyutf8)
  add_library(tinyutf8::tinyutf8 INTERFACE IMPORTED)
  target_include_directories(tinyutf8::tinyutf8 INTERFACE ${CMAKE_CURRENT_LIST_DIR}/include)
endif()
