# Hardening of the program as it is shipped. ADDRTOOL_HARDEN is off where it
# would only be in the way (the sanitizers bring checks of their own).
option(ADDRTOOL_HARDEN "Compile and link with the usual protections" OFF)

if(ADDRTOOL_HARDEN)
  add_compile_options(-fPIE -fstack-protector-strong -fstack-clash-protection
                      -fcf-protection=full -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack,-z,separate-code)
endif()
