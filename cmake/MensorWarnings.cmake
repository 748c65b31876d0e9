# mensor_warnings(<target>): the warnings for every target of mensor, with g++ and clang++. MENSOR_WERROR
# makes them errors (on in the presets, off by default).
#
# Without -Wnon-virtual-dtor: unit formats are singletons that are never deleted through their base class,
# and their destructors are not virtual on purpose.
function(mensor_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic
    -Wshadow -Wconversion -Wsign-conversion -Wdouble-promotion
    -Wold-style-cast -Wcast-align -Wcast-qual
    -Woverloaded-virtual -Wnull-dereference -Wformat=2 -Wimplicit-fallthrough -Wundef
    -Wextra-semi -Wunused)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE
      -Wlogical-op -Wduplicated-cond -Wduplicated-branches)
  endif()
  set_target_properties(${target} PROPERTIES COMPILE_WARNING_AS_ERROR ${MENSOR_WERROR})
endfunction()
