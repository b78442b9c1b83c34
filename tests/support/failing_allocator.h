// Makes chosen allocations of the code under test fail. The linker points malloc(3), calloc(3),
// realloc(3), strdup(3) and getline(3), which allocates its buffer, at the functions of this file;
// what the C library and the C++ library allocate among themselves is not touched.
#pragma once

namespace addrtool::testing {

/// While it lives, the calls numbered `first` to `last`, counted from 1, fail with errno ENOMEM.
/// One at a time.
class FailingAllocations {
 public:
  explicit FailingAllocations(int first) : FailingAllocations(first, first) {}
  FailingAllocations(int first, int last);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
  FailingAllocations(FailingAllocations&&) = delete;
  FailingAllocations& operator=(FailingAllocations&&) = delete;

  /// How many calls were made so far.
  static int calls();
};

}  // namespace addrtool::testing
