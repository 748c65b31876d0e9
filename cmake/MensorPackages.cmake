# The Debian packages, which CPack makes (scripts/package) for the architecture of the build: one for each
# library, libmensor1-log4cplus, libmensor-dev and mensor-tools.
set(MENSOR_MAINTAINER "mensor developers <mensor@packages.debian.org>")
set(MENSOR_LIBRARY_PACKAGES "")
foreach(library IN LISTS MENSOR_LIBRARIES)
  get_target_property(package ${library} MENSOR_DEBIAN_PACKAGE)
  list(APPEND MENSOR_LIBRARY_PACKAGES ${package})
endforeach()
set(MENSOR_DEBIAN_PACKAGES ${MENSOR_LIBRARY_PACKAGES} libmensor1-log4cplus libmensor-dev mensor-tools)

configure_file(packaging/debian/changelog.in changelog @ONLY)
foreach(package IN LISTS MENSOR_DEBIAN_PACKAGES)
  install(FILES packaging/debian/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
    COMPONENT ${package})
  mensor_install_compressed(${PROJECT_BINARY_DIR}/changelog
    ${CMAKE_INSTALL_DATADIR}/doc/${package}/changelog.Debian.gz ${package})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${MENSOR_MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/no_run_paths.cmake)
# Installs into DESTDIR, because the path of the debugger's scripts contains the whole path of the installed library.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL ${MENSOR_DEBIAN_PACKAGES})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
foreach(library IN LISTS MENSOR_LIBRARIES)
  get_target_property(folder ${library} BINARY_DIR)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${folder})
endforeach()
if(CMAKE_LIBRARY_ARCHITECTURE)
  execute_process(COMMAND dpkg-architecture -t ${CMAKE_LIBRARY_ARCHITECTURE} -q DEB_HOST_ARCH
    OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE failed ERROR_QUIET)
  if(NOT failed)
    # With this variable, dpkg-shlibdeps uses the libraries and the objdump of that architecture.
    file(WRITE ${PROJECT_BINARY_DIR}/cpack_project_config.cmake
      "set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})\n")
    set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/cpack_project_config.cmake)
  endif()
endif()

# mensor_package(<name> <section> <multi-arch> <depends> <summary> <description>)
function(mensor_package name section multiarch depends summary description)
  string(TOUPPER ${name} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  # CPack has no variable for the field Multi-Arch; it writes the section as it is.
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION "${section}\nMulti-Arch: ${multiarch}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
endfunction()

set(what
"mensor handles units of measure at run time. It reads and writes units as
text, tells which units are compatible, and converts values. The results
have the same bits on every machine.
")

set(depends "")  # each package of a library, with exactly this version
foreach(library IN LISTS MENSOR_LIBRARIES)
  get_target_property(package ${library} MENSOR_DEBIAN_PACKAGE)
  get_target_property(summary ${library} MENSOR_SUMMARY)
  get_target_property(description ${library} MENSOR_DESCRIPTION)
  get_target_property(links ${library} MENSOR_LINKS)
  set(of_links "")
  foreach(link IN LISTS links)
    get_target_property(linked ${link} MENSOR_DEBIAN_PACKAGE)
    list(APPEND of_links "${linked} (= ${version})")
  endforeach()
  list(JOIN of_links ", " of_links)
  mensor_package(${package} libs same "${of_links}" "${summary}" "${what}\n${description}")
  list(APPEND depends "${package} (= ${version})")

  string(TOUPPER ${package} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)
  set(CPACK_DEBIAN_${key}_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_${key}_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
endforeach()
list(JOIN depends ", " depends)
mensor_package(libmensor1-log4cplus libs same "libmensor1 (= ${version})"
  "physical units of measure at run time - log records" "${what}
This package contains a module for programs that use log4cplus. With it,
libmensor1 logs failures while it is loaded.")
set(CPACK_DEBIAN_LIBMENSOR1_PACKAGE_SUGGESTS "libmensor1-log4cplus (= ${version})")
mensor_package(libmensor-dev libdevel same "${depends}"
  "physical units of measure at run time - development files" "${what}
This package contains the headers and the files for CMake and pkg-config.
The library was built with MENSOR_STRING=${MENSOR_STRING}.")
mensor_package(mensor-tools utils foreign
  "libmensor1 (>= ${PROJECT_VERSION}), libmensor-exact1 (>= ${PROJECT_VERSION}), \
libmensor-checked1 (>= ${PROJECT_VERSION}), libmensor-codes1 (>= ${PROJECT_VERSION})"
  "convert between units of measure on the command line" "${what}
This package contains the command mensor. It converts values, and explains
and lists units.")

set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

include(CPack)
