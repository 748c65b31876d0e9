# Where things go, and how others find them: find_package(mensor 1 CONFIG) or pkg-config mensor;
# the targets are mensor::mensor and mensor::checked (pkg-config mensor-checked).
include(CMakePackageConfigHelpers)
set(MENSOR_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/mensor)

install(TARGETS mensor mensor_checked EXPORT mensorTargets
  LIBRARY COMPONENT libmensor1 NAMELINK_COMPONENT libmensor-dev
  FILE_SET HEADERS COMPONENT libmensor-dev)
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

# The way from the folder of mensor.pc up to the prefix, so that the installed tree may be moved.
file(RELATIVE_PATH MENSOR_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" MENSOR_PC_PREFIX "${MENSOR_PC_PREFIX}")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
  OUTPUT_VARIABLE MENSOR_PC_INCLUDEDIR)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
  OUTPUT_VARIABLE MENSOR_PC_LIBDIR)
configure_file(packaging/mensor.pc.in mensor.pc @ONLY)
configure_file(packaging/mensor-checked.pc.in mensor-checked.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/mensor.pc ${PROJECT_BINARY_DIR}/mensor-checked.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT libmensor-dev)
