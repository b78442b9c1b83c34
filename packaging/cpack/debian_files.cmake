# A DEB has files that other packages do not have: Debian's form of the changelog, and
# the overrides for lintian. Debian's zsh searches another directory.
if(CPACK_GENERATOR STREQUAL DEB)
  set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
  file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
  list(GET CPACK_DEBIAN_FILES 0 changelog)
  list(GET CPACK_DEBIAN_FILES 1 overrides)
  file(COPY_FILE ${changelog} ${share}/doc/addrtool/changelog)
  execute_process(COMMAND gzip -9 --no-name ${share}/doc/addrtool/changelog
    COMMAND_ERROR_IS_FATAL ANY)
  file(MAKE_DIRECTORY ${share}/lintian/overrides)
  file(COPY_FILE ${overrides} ${share}/lintian/overrides/addrtool)
  file(CHMOD ${share}/doc/addrtool/changelog.gz ${share}/lintian/overrides/addrtool
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endif()
