// Failures that cannot be produced on a real file system: a C library function fails on demand. The
// tests are linked with --wrap for each function.
#pragma once

namespace addrtool::testing {

/// The functions that can be made to fail.
enum class Call { Fdopen, Fclose, Chown, Chmod };

/// While it exists, every call of the function does nothing and fails with that error. Only
/// fclose(3) still closes its stream, as a real failure does.
class FailingCall {
 public:
  FailingCall(Call call, int error);
  ~FailingCall();
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;
  FailingCall(FailingCall&&) = delete;
  FailingCall& operator=(FailingCall&&) = delete;
};

}  // namespace addrtool::testing
