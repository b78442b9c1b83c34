// The text that tells how the program is called, and the statuses with which it ends.
#pragma once

namespace addrtool {

inline constexpr int exitDone = 0;     ///< every action that was asked for returned
inline constexpr int exitFailure = 1;  ///< an action failed, or operands were left over
inline constexpr int exitUsage = 2;    ///< the usage text was printed

/// Writes the usage text to standard error and ends the process with status 2. Both the answer
/// to --help and to a command line that asks for nothing.
[[noreturn]] void printUsage();

}  // namespace addrtool
