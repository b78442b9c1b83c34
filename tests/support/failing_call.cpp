#include "support/failing_call.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <utility>

namespace addrtool::testing {
namespace {

std::optional<std::pair<Call, int>>& failing() {
  static std::optional<std::pair<Call, int>> call;
  return call;
}

bool fails(Call call) {
  if (!failing() || failing()->first != call) return false;
  errno = failing()->second;
  return true;
}

}  // namespace

FailingCall::FailingCall(Call call, int error) {
  failing() = {call, error};
}

FailingCall::~FailingCall() {
  failing().reset();
}

}  // namespace addrtool::testing

// The linker option --wrap=NAME sends every call of NAME to __wrap_NAME.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
using addrtool::testing::Call;
using addrtool::testing::fails;

extern "C" {

std::FILE* __real_fdopen(int descriptor, const char* mode);
std::FILE* __wrap_fdopen(int descriptor, const char* mode) {
  return fails(Call::Fdopen) ? nullptr : __real_fdopen(descriptor, mode);
}

int __real_fclose(std::FILE* stream);
int __wrap_fclose(std::FILE* stream) {
  const int result = __real_fclose(stream);
  return fails(Call::Fclose) ? EOF : result;
}

int __real_chown(const char* path, uid_t user, gid_t group);
int __wrap_chown(const char* path, uid_t user, gid_t group) {
  return fails(Call::Chown) ? -1 : __real_chown(path, user, group);
}

int __real_chmod(const char* path, mode_t mode);
int __wrap_chmod(const char* path, mode_t mode) {
  return fails(Call::Chmod) ? -1 : __real_chmod(path, mode);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
