# How the program is compiled and linked when it is shipped.
option(ADDRTOOL_STATIC "Link the program statically" OFF)
option(ADDRTOOL_HARDEN "Compile and link with the usual protections" OFF)

# Paths of the machine that built the program stay out of it.
target_compile_options(addrtool_flags INTERFACE
  $<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)

# The linker drops what nobody calls. In a static program, that is a lot.
if(ADDRTOOL_STATIC)
  target_compile_options(addrtool_flags INTERFACE -ffunction-sections -fdata-sections)
  target_link_options(addrtool_flags INTERFACE -Wl,--gc-sections)
endif()

if(ADDRTOOL_HARDEN)
  target_compile_options(addrtool_flags INTERFACE
    -fPIE -fstack-protector-strong -fstack-clash-protection -fcf-protection=full
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  target_link_options(addrtool_flags INTERFACE
    -Wl,-z,relro,-z,now,-z,noexecstack,-z,separate-code)
endif()
