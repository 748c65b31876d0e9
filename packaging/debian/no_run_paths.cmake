# CPack runs this on the files that it is about to pack. Debian wants no run paths in its packages: the
# system looks into their folder anyway.
file(GLOB_RECURSE files LIST_DIRECTORIES false
  ${CPACK_TEMPORARY_DIRECTORY}/*/lib/*/libmensor*.so.*.* ${CPACK_TEMPORARY_DIRECTORY}/*/bin/mensor)
foreach(file IN LISTS files)
  file(RPATH_REMOVE FILE ${file})
endforeach()
