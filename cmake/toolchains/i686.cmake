# 32-bit x86. It is emulated like the others, although an x86-64 kernel could run its programs.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
# The loader would take the C library of Debian's libc6-i386, where that is installed. With a loader
# of another build, each child process loops forever.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-i386-static -L /usr/i686-linux-gnu
    -E LD_LIBRARY_PATH=/usr/i686-linux-gnu/lib)

set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
set(CPACK_RPM_PACKAGE_ARCHITECTURE i686)
