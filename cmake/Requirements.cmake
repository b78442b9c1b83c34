# Refuses what cannot build the program, or would build one that fails.

set(oldest_GNU 11)
set(oldest_Clang 13)
if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS "${oldest_${CMAKE_CXX_COMPILER_ID}}")
  message(FATAL_ERROR "addrtool needs g++ ${oldest_GNU} or clang ${oldest_Clang}, or later. "
    "This is ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}.")
endif()

# There, stat(2) fails for large inode numbers and for dates after 2038. The program would then
# leave a file unchanged, or lose its owner, without a message.
if(CMAKE_SIZEOF_VOID_P LESS 8)
  message(FATAL_ERROR "addrtool needs a 64-bit processor.")
endif()
