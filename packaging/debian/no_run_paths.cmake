# CPack runs this on the files before it packs them. It removes the run paths: Debian packages must not have
# them, because the system searches the folder of the libraries anyway.
file(GLOB_RECURSE libraries LIST_DIRECTORIES false ${CPACK_TEMPORARY_DIRECTORY}/libmensor*.so.*.*
  ${CPACK_TEMPORARY_DIRECTORY}/registry.so)
file(GLOB_RECURSE tools LIST_DIRECTORIES false ${CPACK_TEMPORARY_DIRECTORY}/mensor)
list(FILTER libraries EXCLUDE REGEX "\\.py$")  # the printers for gdb
list(FILTER tools INCLUDE REGEX "/bin/mensor$")
foreach(file IN LISTS libraries tools)
  file(RPATH_REMOVE FILE ${file})
endforeach()
