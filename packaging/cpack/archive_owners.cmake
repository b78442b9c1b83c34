# CPack stores the packager's user and umask in the outer archive of a DEB. Pack its
# members again without them; they are still in the installed tree.
if(CPACK_GENERATOR STREQUAL DEB)
  execute_process(
    COMMAND ar rD ${CPACK_PACKAGE_FILES} debian-binary control.tar.gz data.tar.gz
    WORKING_DIRECTORY ${CPACK_TEMPORARY_DIRECTORY} COMMAND_ERROR_IS_FATAL ANY)
endif()
