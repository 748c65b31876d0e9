# mensor_warnings(<target>): the warnings that every target of mensor is built with, by g++ and
# clang++ alike. MENSOR_WERROR makes them errors (on in the presets, off for those who just build).
#
# Not among them: -Wnon-virtual-dtor, since unit formats are singletons that nobody destroys through
# their base, and their destructors are non-virtual by design.
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
