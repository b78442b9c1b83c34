// Watches the system calls of a program with strace(1), and answers some in the kernel's place.
#pragma once

#include <string>
#include <vector>

#include "support/child_process.h"

namespace addrtool::testing {

/// What a program did and what it asked the kernel for.
struct Trace {
  Outcome outcome;
  std::vector<std::string> calls;  ///< lines of strace, in order
};

/// Runs the command under strace with these options (`-e trace=...`, `-e inject=...`). Under an
/// emulator, it ends the test instead, which ctest then lists as skipped.
Trace traceCommand(const std::vector<std::string>& options,
                   const std::vector<std::string>& command);

/// The strace option that answers the n-th call with these bytes, written to where its second
/// argument points, and with their number as its result.
std::string answer(const std::string& systemCall, int n, const std::string& bytes);

/// The calls from the first on that starts like this; none when none does.
std::vector<std::string> callsFrom(const std::string& start, const Trace& trace);

/// Those of the calls that start like this.
std::vector<std::string> callsStarting(const std::string& start,
                                       const std::vector<std::string>& calls);

}  // namespace addrtool::testing
