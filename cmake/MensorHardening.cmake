# mensor_hardened(<target>): makes faults of a library or a tool harder to exploit. The linker maps the
# tables of addresses read-only before main() runs (full RELRO, which binds all names at load). Functions
# with arrays check for writes past their end. Calls of the C library check the size of their buffers.
# Indirect jumps may only land at marked places, on processors that support that.
#
# docs/performance.md has the costs. MENSOR_HARDENING=OFF builds without hardening, to measure them.
include(CheckCXXCompilerFlag)
option(MENSOR_HARDENING "Harden the libraries and the tool against faults" ON)
mark_as_advanced(MENSOR_HARDENING)

# clang only warns about a flag that its target ignores, so a warning counts as a refusal here.
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
    # The compiler knows the sizes of buffers only in optimised code.
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
  target_link_options(${target} PRIVATE -Wl,-z,relro -Wl,-z,now)
endfunction()
