# 32-bit x86. An x86-64 kernel runs its programs, so no emulator is needed.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)

set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
set(CPACK_RPM_PACKAGE_ARCHITECTURE i686)
