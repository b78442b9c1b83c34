// Failures that no file system can be talked into: a C library function fails on demand. The tests
// that include this are linked with --wrap for each function that is named here.
#pragma once

namespace addrtool::testing {

/// The functions that can be made to fail.
enum class Call { Fdopen, Fclose, Chown, Chmod };

/// While it lives, every call of the function does nothing and fails with that error; but fclose(3)
/// closes its stream all the same, as the real one does.
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
