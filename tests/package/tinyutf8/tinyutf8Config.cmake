# Stands in for the CMake package of tiny-utf8, so that the build which uses it can be tested where
# it is not installed. The class is our own: see include/tinyutf8/tinyutf8.h.
if(NOT TARGET tinyutf8::tinyutf8)
  add_library(tinyutf8::tinyutf8 INTERFACE IMPORTED)
  target_include_directories(tinyutf8::tinyutf8 INTERFACE ${CMAKE_CURRENT_LIST_DIR}/include)
endif()
