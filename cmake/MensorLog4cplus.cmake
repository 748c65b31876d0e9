# log4cplus::log4cplus: the target of a surrounding project if there is one, else the package that CMake
# finds. Only mensor sees a target that is found here, so it can be corrected here.
if(NOT TARGET log4cplus::log4cplus)
  find_package(log4cplus 2 CONFIG REQUIRED)
  get_target_property(type log4cplus::log4cplus TYPE)
  if(type STREQUAL "SHARED_LIBRARY")
    # A shared library loads its own dependencies. The package of Debian also lists a static librt, which a
    # machine with a cross compiler may not have.
    set_target_properties(log4cplus::log4cplus PROPERTIES INTERFACE_LINK_LIBRARIES "")
  endif()
endif()
