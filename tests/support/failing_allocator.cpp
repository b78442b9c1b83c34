#include "support/failing_allocator.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace addrtool::testing {
namespace {

int firstFailing = 0;
int lastFailing = 0;
int callCount = 0;

bool nextCallFails() {
  if (firstFailing == 0) return false;
  ++callCount;
  if (callCount < firstFailing || callCount > lastFailing) return false;
  errno = ENOMEM;
  return true;
}

}  // namespace

FailingAllocations::FailingAllocations(int first, int last) {
  callCount = 0;
  firstFailing = first;
  lastFailing = last;
}

FailingAllocations::~FailingAllocations() {
  firstFailing = 0;
}

int FailingAllocations::calls() {
  return callCount;
}

}  // namespace addrtool::testing

// The names are the linker's: --wrap=NAME sends calls of NAME to __wrap_NAME, and those of
// __real_NAME to the original.
// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming, *-no-malloc,
// *-owning-memory)
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* pointer, std::size_t size);
char* __real_strdup(const char* text);
ssize_t __real_getline(char** line, std::size_t* size, std::FILE* stream);
// What a call of getline becomes in optimised code.
ssize_t __real___getdelim(char** line, std::size_t* size, int delimiter, std::FILE* stream);

void* __wrap_malloc(std::size_t size) {
  return addrtool::testing::nextCallFails() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return addrtool::testing::nextCallFails() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* pointer, std::size_t size) {
  return addrtool::testing::nextCallFails() ? nullptr : __real_realloc(pointer, size);
}

char* __wrap_strdup(const char* text) {
  return addrtool::testing::nextCallFails() ? nullptr : __real_strdup(text);
}

ssize_t __wrap_getline(char** line, std::size_t* size, std::FILE* stream) {
  return addrtool::testing::nextCallFails() ? -1 : __real_getline(line, size, stream);
}

ssize_t __wrap___getdelim(char** line, std::size_t* size, int delimiter, std::FILE* stream) {
  return addrtool::testing::nextCallFails() ? -1 : __real___getdelim(line, size, delimiter, stream);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming, *-no-malloc,
// *-owning-memory)
