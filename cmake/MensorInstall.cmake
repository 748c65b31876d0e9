# Installs all libraries of mensor_library(). Then find_package(mensor 1 CONFIG) defines the targets
# mensor::<name>, and pkg-config has the packages mensor and mensor-<name>.
include(CMakePackageConfigHelpers)
set(MENSOR_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/mensor)
get_property(MENSOR_LIBRARIES GLOBAL PROPERTY MENSOR_LIBRARIES)

# The relative path from the folder of a .pc file to the prefix, so that the installed tree can be moved.
file(RELATIVE_PATH MENSOR_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" MENSOR_PC_PREFIX "${MENSOR_PC_PREFIX}")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
  OUTPUT_VARIABLE MENSOR_PC_INCLUDEDIR)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
  OUTPUT_VARIABLE MENSOR_PC_LIBDIR)
set(MENSOR_PC_RUN_PATH "")
if(NOT MENSOR_DEBIAN AND NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  # If the libraries are not in a system folder, a program needs their path.
  set(MENSOR_PC_RUN_PATH "-Wl,-rpath,\${libdir} ")
endif()

# Each Debian package is a component. There is one package for each soname.
foreach(library IN LISTS MENSOR_LIBRARIES)
  get_target_property(package ${library} MENSOR_DEBIAN_PACKAGE)
  install(TARGETS ${library} EXPORT mensorTargets
    LIBRARY COMPONENT ${package} NAMELINK_COMPONENT libmensor-dev
    FILE_SET HEADERS COMPONENT libmensor-dev)

  get_target_property(pkg_config ${library} MENSOR_PKG_CONFIG)
  get_target_property(summary ${library} MENSOR_SUMMARY)
  get_target_property(requires ${library} MENSOR_LINKS)
  list(TRANSFORM requires REPLACE "^mensor::" "mensor-")
  list(TRANSFORM requires REPLACE "^mensor-mensor$" "mensor")
  list(JOIN requires " " requires)
  configure_file(packaging/library.pc.in ${pkg_config}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pkg_config}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT libmensor-dev)
endforeach()
if(TARGET mensor_log4cplus)
  install(TARGETS mensor_log4cplus LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/mensor
    COMPONENT libmensor1-log4cplus)
endif()
install(EXPORT mensorTargets NAMESPACE mensor:: DESTINATION ${MENSOR_CMAKE_DIR}
  COMPONENT libmensor-dev)

configure_package_config_file(packaging/mensorConfig.cmake.in mensorConfig.cmake
  INSTALL_DESTINATION ${MENSOR_CMAKE_DIR}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(mensorConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/mensorConfig.cmake
    ${PROJECT_BINARY_DIR}/mensorConfigVersion.cmake
  DESTINATION ${MENSOR_CMAKE_DIR} COMPONENT libmensor-dev)

# gdb loads the printers with the library. Their path repeats the whole path of the installed library.
# They support only the library's own string class.
if(MENSOR_STRING STREQUAL "own")
  install(FILES tools/gdb/mensor_gdb.py
    DESTINATION "${CMAKE_INSTALL_DATADIR}/gdb/auto-load\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}"
    RENAME libmensor.so.${PROJECT_VERSION}-gdb.py
    COMPONENT libmensor1)
endif()

# mensor_install_compressed(<file> <destination>.gz <component>): compresses and installs a file. The
# same file always gives the same bytes.
find_program(MENSOR_GZIP gzip)
mark_as_advanced(MENSOR_GZIP)
function(mensor_install_compressed file destination component)
  if(NOT MENSOR_GZIP)
    return()
  endif()
  cmake_path(GET destination FILENAME name)
  cmake_path(GET destination PARENT_PATH folder)
  execute_process(COMMAND ${MENSOR_GZIP} -9 -n -c ${file}
    OUTPUT_FILE ${PROJECT_BINARY_DIR}/compressed/${name} COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  install(FILES ${PROJECT_BINARY_DIR}/compressed/${name} DESTINATION ${folder}
    COMPONENT ${component})
endfunction()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/compressed)

if(PROJECT_IS_TOP_LEVEL)
  include(MensorPackages)
endif()
