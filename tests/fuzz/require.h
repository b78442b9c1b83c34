// Checks a rule in a fuzzer.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace addrtool::fuzz {

/// A copy from the start, because libFuzzer discards what the program prints.
inline const int reportFd = dup(STDERR_FILENO);

/// Prints the rule and aborts if it does not hold. libFuzzer reports that as a crash.
inline void require(bool holds, const char* rule) {
  if (holds) return;
  dprintf(reportFd, "\nrule broken: %s\n", rule);
  std::abort();
}

}  // namespace addrtool::fuzz
