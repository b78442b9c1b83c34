# Removes the files that the last `cmake --install` of this build tree installed, and
# the directories of the program that are then empty. DESTDIR must be as it was then.
file(STRINGS ${MANIFEST} files)
foreach(file IN LISTS files)
  file(REMOVE "$ENV{DESTDIR}${file}")
  cmake_path(GET file PARENT_PATH directory)
  file(GLOB remaining "$ENV{DESTDIR}${directory}/*")
  if(directory MATCHES "/addrtool$" AND NOT remaining)
    file(REMOVE_RECURSE "$ENV{DESTDIR}${directory}")
  endif()
endforeach()
