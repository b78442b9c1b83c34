// Traces the system calls of a program with strace(1), and answers some instead of the kernel.
#pragma once

#include <string>
#include <vector>

#include "support/child_process.h"

namespace addrtool::testing {

/// The result of a program and its system calls.
struct Trace {
  Outcome outcome;
  std::vector<std::string> calls;  ///< lines of strace, in order
};

/// Ends the running test if an emulator runs the programs. ctest then lists the test as skipped,
/// and scripts/test counts it under its reason.
void skipUnderEmulator(const char* reason);

/// Runs the command under strace with these options (`-e trace=...`, `-e inject=...`). A test that
/// calls this cannot run under an emulator.
Trace traceCommand(const std::vector<std::string>& options,
                   const std::vector<std::string>& command);

/// The strace option that makes the n-th call return these bytes: they go to where its second
/// argument points, and their number is the result.
std::string answer(const std::string& systemCall, int n, const std::string& bytes);

/// All calls from the first one that starts with this text.
std::vector<std::string> callsFrom(const std::string& start, const Trace& trace);

/// The calls that start with this text.
std::vector<std::string> callsStarting(const std::string& start,
                                       const std::vector<std::string>& calls);

}  // namespace addrtool::testing
