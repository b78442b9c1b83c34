#include "support/failing_call.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace addrtool::testing {

bool FailingCall::fails(Call call) {
  if (planned.first == 0 || call != planned.call) return false;
  ++callCount;
  if (callCount < planned.first || callCount > planned.last) return false;
  errno = planned.error;
  return true;
}

}  // namespace addrtool::testing

// The names are the linker's: --wrap=NAME sends calls of NAME to __wrap_NAME, and those of
// __real_NAME to the original.
// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming, *-no-malloc,
// *-owning-memory)
using addrtool::testing::Call;
using addrtool::testing::FailingCall;

extern "C" {

void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size) {
  return FailingCall::fails(Call::Allocation) ? nullptr : __real_malloc(size);
}

void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
  return FailingCall::fails(Call::Allocation) ? nullptr : __real_calloc(count, size);
}

void* __real_realloc(void* pointer, std::size_t size);
void* __wrap_realloc(void* pointer, std::size_t size) {
  return FailingCall::fails(Call::Allocation) ? nullptr : __real_realloc(pointer, size);
}

char* __real_strdup(const char* text);
char* __wrap_strdup(const char* text) {
  return FailingCall::fails(Call::Allocation) ? nullptr : __real_strdup(text);
}

ssize_t __real_getline(char** line, std::size_t* size, std::FILE* stream);
ssize_t __wrap_getline(char** line, std::size_t* size, std::FILE* stream) {
  return FailingCall::fails(Call::Allocation) ? -1 : __real_getline(line, size, stream);
}

// Optimised code calls this in place of getline.
ssize_t __real___getdelim(char** line, std::size_t* size, int delimiter, std::FILE* stream);
ssize_t __wrap___getdelim(char** line, std::size_t* size, int delimiter, std::FILE* stream) {
  return FailingCall::fails(Call::Allocation) ? -1
                                              : __real___getdelim(line, size, delimiter, stream);
}

int __real_close(int descriptor);
int __wrap_close(int descriptor) {
  const int result = __real_close(descriptor);
  return FailingCall::fails(Call::Close) ? -1 : result;
}

ssize_t __real_write(int descriptor, const void* bytes, std::size_t size);
ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t size) {
  return FailingCall::fails(Call::Write) ? -1 : __real_write(descriptor, bytes, size);
}

std::FILE* __real_fdopen(int descriptor, const char* mode);
std::FILE* __wrap_fdopen(int descriptor, const char* mode) {
  return FailingCall::fails(Call::Fdopen) ? nullptr : __real_fdopen(descriptor, mode);
}

int __real_fclose(std::FILE* stream);
int __wrap_fclose(std::FILE* stream) {
  const int result = __real_fclose(stream);
  return FailingCall::fails(Call::Fclose) ? EOF : result;
}

int __real_stat(const char* path, struct stat* status);
int __wrap_stat(const char* path, struct stat* status) {
  return FailingCall::fails(Call::Stat) ? -1 : __real_stat(path, status);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming, *-no-malloc,
// *-owning-memory)
