// What the fuzzers share. Each checks properties that hold for every input. The sanitizers find
// what is read outside of a buffer, and what leaks.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace addrtool::fuzz {

using Octets = std::span<const std::uint8_t>;

// A copy from the start, because libFuzzer discards what the program prints.
inline const int reportFd = dup(STDERR_FILENO);

/// Prints the rule and aborts if it does not hold. libFuzzer reports that as a crash.
inline void require(bool holds, const char* rule) {
  if (holds) return;
  dprintf(reportFd, "\nrule broken: %s\n", rule);
  std::abort();
}

}  // namespace addrtool::fuzz
