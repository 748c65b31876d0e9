# mensor_hardened(<target>): what makes a fault of a library or a tool harder to use against its
# process. The linker maps the tables of addresses read-only before main() runs (full RELRO, which
# needs all names bound at load), functions with arrays check that nothing wrote past them, calls of
# the C library know the size of what they write to, and indirect jumps land only where one may, on
# processors that can tell.
#
# docs/performance.md says what it costs. MENSOR_HARDENING=OFF builds without, to measure that.
include(CheckCXXCompilerFlag)
option(MENSOR_HARDENING "Harden the libraries and the tool against faults" ON)
mark_as_advanced(MENSOR_HARDENING)

# clang only warns of a flag that its target ignores, so here a warning is a refusal.
block(SCOPE_FOR VARIABLES)
  set(CMAKE_REQUIRED_FLAGS -Werror)
  check_cxx_compiler_flag(-fcf-protection=full MENSOR_HAS_CF_PROTECTION)                  # x86
  check_cxx_compiler_flag(-mbranch-protection=standard MENSOR_HAS_BRANCH_PROTECTION)  # 64-bit ARM
endblock()

function(mensor_hardened target)
  if(NOT MENSOR_HARDENING)
    return()
  endif()
  target_compile_options(${target} PRIVATE
    -fstack-protector-strong
    $<$<BOOL:${MENSOR_HAS_CF_PROTECTION}>:-fcf-protection=full>
    $<$<BOOL:${MENSOR_HAS_BRANCH_PROTECTION}>:-mbranch-protection=standard>
    # The sizes are known only where the compiler optimises.
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
  target_link_options(${target} PRIVATE -Wl,-z,relro -Wl,-z,now)
endfunction()
