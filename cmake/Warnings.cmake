# Only the presets for developers turn warnings into errors, by
# CMAKE_COMPILE_WARNING_AS_ERROR. A newer compiler warns of more, and must not stop
# a user who only wants the program.
target_compile_options(addrtool_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  -Wold-style-cast -Wcast-qual -Wcast-align -Wformat=2 -Wnull-dereference
  -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi -Wundef
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op>)

# g++ 12 sees copies that overlap, of more bytes than there is memory, when std::string
# is optimised. g++ 13 does not.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(addrtool_flags INTERFACE -Wno-restrict)
endif()
