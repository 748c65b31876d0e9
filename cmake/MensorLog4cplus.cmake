# log4cplus::log4cplus: what a surrounding project has already, under whatever kind of target, else the
# package that CMake finds. Found here, the target is known to mensor alone, so it may be mended here.
if(NOT TARGET log4cplus::log4cplus)
  find_package(log4cplus 2 CONFIG REQUIRED)
  get_target_property(type log4cplus::log4cplus TYPE)
  if(type STREQUAL "SHARED_LIBRARY")
    # A shared library brings what it needs itself; Debian's package also lists a static librt, which
    # a cross compiler's machine has no reason to have.
    set_target_properties(log4cplus::log4cplus PROPERTIES INTERFACE_LINK_LIBRARIES "")
  endif()
endif()
