# 32-bit x86. It is emulated like the others, although an x86-64 kernel could run its programs.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-i386-static -L /usr/i686-linux-gnu)

set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
set(CPACK_RPM_PACKAGE_ARCHITECTURE i686)
