# How the program is compiled and linked when it is shipped.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)

# Without a preset and a build type, the program would be neither optimised nor hardened.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  message(STATUS "No build type was given: Release, hardened")
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()
string(COMPARE EQUAL "${CMAKE_BUILD_TYPE}" Release is_release)

option(ADDRTOOL_STATIC "Link the program statically" OFF)
option(ADDRTOOL_HARDEN "Compile and link with the usual protections" ${is_release})

# Paths of the machine that built the program stay out of it.
target_compile_options(addrtool_flags INTERFACE
  $<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)

# The linker drops what nobody calls. In a static program, that is a lot.
if(ADDRTOOL_STATIC)
  target_compile_options(addrtool_flags INTERFACE -ffunction-sections -fdata-sections)
  target_link_options(addrtool_flags INTERFACE -Wl,--gc-sections)
endif()

# Each architecture and compiler offers some of these: -fcf-protection is x86's,
# -mbranch-protection is ARM's. tests/release/hardening_test knows which.
# With -Werror, a flag that clang only warns about counts as missing.
if(ADDRTOOL_HARDEN)
  target_compile_options(addrtool_flags INTERFACE -fPIE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  set(CMAKE_REQUIRED_FLAGS -Werror)
  foreach(flag -fstack-protector-strong -fstack-clash-protection
          -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "ADDRTOOL_HAS${flag}" has_flag)
    check_cxx_compiler_flag(${flag} ${has_flag})
    if(${has_flag})
      target_compile_options(addrtool_flags INTERFACE ${flag})
    endif()
  endforeach()
  unset(CMAKE_REQUIRED_FLAGS)
  foreach(flag relro now noexecstack separate-code)
    string(MAKE_C_IDENTIFIER "ADDRTOOL_HAS_Z_${flag}" has_flag)
    check_linker_flag(CXX LINKER:-z,${flag} ${has_flag})
    if(${has_flag})
      target_link_options(addrtool_flags INTERFACE LINKER:-z,${flag})
    endif()
  endforeach()
endif()

# Only the program is linked like this; tests choose for themselves.
# A position-independent static program needs rcrt1.o of the C library, which
# Debian lacks for s390x.
if(ADDRTOOL_STATIC)
  set(CMAKE_REQUIRED_FLAGS -fPIE)
  check_linker_flag(CXX -static-pie ADDRTOOL_HAS_STATIC_PIE)
  unset(CMAKE_REQUIRED_FLAGS)
  set(ADDRTOOL_PROGRAM_LINK_OPTIONS $<IF:$<BOOL:${ADDRTOOL_HAS_STATIC_PIE}>,-static-pie,-static>)
elseif(ADDRTOOL_HARDEN)
  set(ADDRTOOL_PROGRAM_LINK_OPTIONS -pie)
endif()
