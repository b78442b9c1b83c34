// The usage text and the exit statuses of the program.
#pragma once

namespace addrtool {

inline constexpr int exitDone = 0;     ///< every requested action returned
inline constexpr int exitFailure = 1;  ///< an action failed, or there were unexpected operands
inline constexpr int exitUsage = 2;    ///< the usage text was printed

/// Writes the usage text to standard error and ends the process with status 2. Called for --help,
/// for a command line without an action, and for an add without its two operands.
[[noreturn]] void printUsage();

}  // namespace addrtool
