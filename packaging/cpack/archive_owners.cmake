# The outer archive of a DEB shows who packed it, and under which umask. Its
# members, which still lie in the installed tree, are archived anew without that.
if(CPACK_GENERATOR STREQUAL DEB)
  execute_process(
    COMMAND ar rD ${CPACK_PACKAGE_FILES} debian-binary control.tar.gz data.tar.gz
    WORKING_DIRECTORY ${CPACK_TEMPORARY_DIRECTORY} COMMAND_ERROR_IS_FATAL ANY)
endif()
