# ADDRTOOL_SANITIZE: a list for -fsanitize=, empty for none. Applies to
# everything that is built, tests included, as the sanitizers require.
set(ADDRTOOL_SANITIZE "" CACHE STRING "Sanitizers, as in address,undefined")

if(ADDRTOOL_SANITIZE)
  add_compile_options(-fsanitize=${ADDRTOOL_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ADDRTOOL_SANITIZE})
endif()
