# Read before each package is made. All dates are the release's. rpmbuild finds
# its settings (packager, no build host, files packed as they were installed) in
# a home directory of its own, where it also leaves files behind.
set(ENV{SOURCE_DATE_EPOCH} ${CPACK_RELEASE_EPOCH})
set(ENV{HOME} ${CPACK_PACKAGE_DIRECTORY}/_CPack_Packages/home)
configure_file(${CMAKE_CURRENT_LIST_DIR}/rpmmacros $ENV{HOME}/.rpmmacros @ONLY)
