#include "require.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace addrtool::fuzz {
namespace {

// A copy from the start, because libFuzzer discards what the program prints.
const int reportFd = dup(STDERR_FILENO);

}  // namespace

void require(bool holds, const char* rule) {
  if (holds) return;
  dprintf(reportFd, "\nrule broken: %s\n", rule);
  std::abort();
}

}  // namespace addrtool::fuzz
