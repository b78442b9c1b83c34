// Traces the system calls of a program with strace(1), and answers some instead of the kernel.
#pragma once

#include "support/child_process.h"

namespace addrtool::testing {

using Lines = std::vector<std::string>;

/// The result of a program and its system calls.
struct Trace {
  Outcome outcome;
  Lines calls;  ///< lines of strace, in order
};

/// Ends the running test if an emulator runs the programs. ctest then lists the test as skipped,
/// and scripts/test counts it under its reason.
void skipUnderEmulator(const char* reason);

/// Runs the command under strace. An option without a dash is an expression of strace's -e:
/// "trace=...", "inject=...". A test that calls this cannot run under an emulator.
Trace traceCommand(const Lines& options, const Lines& command);

/// The expression that makes the n-th call return these bytes: they go to where its second
/// argument points, and their number is the result.
std::string answer(const std::string& systemCall, int n, const std::string& bytes);

/// The calls before the first one that starts with this text.
Lines callsBefore(const std::string& start, const Lines& calls);

/// All calls from the first one that starts with this text.
Lines callsFrom(const std::string& start, const Lines& calls);

/// The calls that start with this text.
Lines callsStarting(const std::string& start, const Lines& calls);

}  // namespace addrtool::testing
