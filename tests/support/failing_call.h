// Failures that cannot be produced for real: functions of the C library fail on demand. The linker
// redirects the calls of the code under test (--wrap), not those inside the C and C++ libraries.
#pragma once

#include <cerrno>
#include <climits>

namespace addrtool::testing {

/// The functions that can be made to fail. Allocations are malloc(3), calloc(3), realloc(3),
/// strdup(3) and getline(3), which allocates its buffer.
enum class Call { Allocation, Close, Write, Fdopen, Fclose, Stat };

/// While it exists, the calls numbered `first` to `last`, counted from 1, do nothing and fail with
/// that error. Only close(2) and fclose(3) still close, as a real failure does. Only one may exist
/// at a time.
class FailingCall {
 public:
  FailingCall(Call call, int error, int first = 1, int last = INT_MAX) {
    planned = {call, error, first, last};
    callCount = 0;
  }
  ~FailingCall() { end(); }
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;

  /// From now on, no call fails.
  static void end() { planned = {}; }

  /// The number of calls so far.
  static int calls() { return callCount; }

  /// Counts the call if it is of the planned kind. Returns whether it must fail, and sets errno
  /// then.
  static bool fails(Call call);

 private:
  struct Plan {
    Call call;
    int error;
    int first;
    int last;
  };
  inline static Plan planned{};  // none while `first` is 0
  inline static int callCount = 0;
};

/// Makes those allocations run out of memory.
struct FailingAllocations : FailingCall {
  explicit FailingAllocations(int only) : FailingAllocations(only, only) {}
  FailingAllocations(int first, int last) : FailingCall(Call::Allocation, ENOMEM, first, last) {}
};

}  // namespace addrtool::testing
