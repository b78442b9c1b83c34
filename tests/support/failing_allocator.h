// Makes chosen allocations of the code under test fail: calls of malloc(3), calloc(3), realloc(3),
// strdup(3) and getline(3), which allocates its buffer. The linker redirects these calls.
// Allocations inside the C and C++ libraries are not affected.
#pragma once

namespace addrtool::testing {

/// While it exists, the calls numbered `first` to `last`, counted from 1, fail with errno ENOMEM.
/// Only one may exist at a time.
class FailingAllocations {
 public:
  explicit FailingAllocations(int first) : FailingAllocations(first, first) {}
  FailingAllocations(int first, int last);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
  FailingAllocations(FailingAllocations&&) = delete;
  FailingAllocations& operator=(FailingAllocations&&) = delete;

  /// The number of calls so far.
  static int calls();
};

}  // namespace addrtool::testing
