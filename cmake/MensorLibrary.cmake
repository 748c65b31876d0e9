# mensor_library(<target>
#   SUMMARY <line>               one line for pkg-config and the package of Debian
#   DESCRIPTION <lines>          the rest of the description of the package of Debian
#   SOURCES <file>...
#   HEADERS <file>...            the public headers
#   [LINKS mensor::<name>...])   libraries of this project whose headers its public headers include
#
# Adds a shared library of this project. All names follow from <target>. For mensor_checked:
#
#   mensor::checked                       the target in CMake, also where mensor is installed
#   libmensor_checked.so.1, .map          the file, and its exported names
#   mensor-checked                        pkg-config
#   libmensor-checked1                    the package of Debian
#
# MensorInstall.cmake installs and MensorPackages.cmake packages all these libraries.
include_guard(DIRECTORY)
include(MensorHardening)

define_property(GLOBAL PROPERTY MENSOR_LIBRARIES BRIEF_DOCS "The libraries of the project, in order")

function(mensor_library target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SUMMARY;DESCRIPTION" "SOURCES;HEADERS;LINKS")
  string(REGEX REPLACE "^mensor_" "" name ${target})
  string(REPLACE "_" "-" dashed ${target})
  set(map ${CMAKE_CURRENT_SOURCE_DIR}/lib${target}.map)

  add_library(${target} SHARED ${arg_SOURCES})
  add_library(mensor::${name} ALIAS ${target})
  target_sources(${target} PUBLIC
    FILE_SET HEADERS
    BASE_DIRS ${PROJECT_SOURCE_DIR}/src ${PROJECT_BINARY_DIR}/include
    FILES ${arg_HEADERS})
  target_link_libraries(${target} PUBLIC ${arg_LINKS})
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    VERIFY_INTERFACE_HEADER_SETS ON
    LINK_DEPENDS ${map}
    MENSOR_SUMMARY "${arg_SUMMARY}"
    MENSOR_DESCRIPTION "${arg_DESCRIPTION}"
    MENSOR_LINKS "${arg_LINKS}"
    MENSOR_PKG_CONFIG ${dashed}
    MENSOR_DEBIAN_PACKAGE lib${dashed}${PROJECT_VERSION_MAJOR})
  set_property(GLOBAL APPEND PROPERTY MENSOR_LIBRARIES ${target})
  mensor_warnings(${target})
  mensor_hardened(${target})
  mensor_precompiled(${target})
  mensor_run_path(${target} ${CMAKE_INSTALL_FULL_LIBDIR})

  # A compiler cache may pass this to the compiler instead of the absolute path.
  file(RELATIVE_PATH relative_source_dir ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR})
  target_compile_options(${target} PRIVATE
    # Replacing single functions of a library at load time is not supported, so it may inline its own.
    -fno-semantic-interposition
    # A fused multiply-add rounds once, two operations round twice. Without it all processors give the same
    # bits.
    -ffp-contract=off
    # __FILE__ is src/... and does not depend on the folder of the build.
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
    -fmacro-prefix-map=${relative_source_dir}/=)
  target_link_options(${target} PRIVATE
    -Wl,-Bsymbolic-functions
    -Wl,--version-script=${map}
    # Clients keep pointers to units, and units use code of the library that made them, until the process
    # ends. So dlclose() must not unload the library.
    -Wl,-z,nodelete)
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    # The program has the functions of the sanitizers, not the library.
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
endfunction()

# mensor_precompiled(<target>): if MENSOR_PRECOMPILED is on, compiles the headers of the standard library once for
# the target, not for each source. The code stays the same. A source with a missing #include would be compiled
# without a message, so this is off by default.
function(mensor_precompiled target)
  if(MENSOR_PRECOMPILED)
    target_precompile_headers(${target} PRIVATE
      <algorithm> <array> <charconv> <cmath> <functional> <map> <memory> <mutex> <optional> <ostream> <stdexcept>
      <string> <string_view> <unordered_map> <utility> <vector>)
    cmake_language(EVAL CODE "cmake_language(DEFER CALL _mensor_precompiled ${target})")  # now it knows ${target}
  endif()
endfunction()

# Compilers refuse the compiled headers for a source with options of its own.
function(_mensor_precompiled target)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    get_source_file_property(options ${source} COMPILE_OPTIONS)
    if(options)
      set_source_files_properties(${source} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    endif()
  endforeach()
endfunction()

# mensor_run_path(<target> <folder>): lets the installed <target> in <folder> find the libraries of this
# project, even if the installed tree is moved. packaging/debian/no_run_paths.cmake removes the path from
# the packages of Debian.
function(mensor_run_path target folder)
  file(RELATIVE_PATH way ${folder} ${CMAKE_INSTALL_FULL_LIBDIR})
  string(REGEX REPLACE "/$" "" path "\$ORIGIN/${way}")
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${path}")
endfunction()
