#include "require.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace addrtool::fuzz {
namespace {

// Kept from the start: libFuzzer is told to discard what the product prints.
const int reportFd = dup(STDERR_FILENO);

}  // namespace

void require(bool holds, const char* rule) {
  if (holds) return;
  dprintf(reportFd, "\nrule broken: %s\n", rule);
  std::abort();
}

}  // namespace addrtool::fuzz
