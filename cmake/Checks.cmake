# What a build for the tests adds to the program.
option(ADDRTOOL_ASSERTIONS "Check the use of the standard library at run time" OFF)
option(ADDRTOOL_COVERAGE "Count the lines and branches that run (g++)" OFF)
set(ADDRTOOL_SANITIZE "" CACHE STRING "Sanitizers, as in address,undefined")

if(ADDRTOOL_ASSERTIONS)
  target_compile_definitions(addrtool_flags INTERFACE _GLIBCXX_ASSERTIONS)
endif()

if(ADDRTOOL_COVERAGE)
  target_compile_options(addrtool_flags INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(addrtool_flags INTERFACE --coverage)
endif()

if(ADDRTOOL_SANITIZE)
  target_compile_options(addrtool_flags INTERFACE
    -fsanitize=${ADDRTOOL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(addrtool_flags INTERFACE -fsanitize=${ADDRTOOL_SANITIZE})
endif()
