#include "persist/replace_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace addrtool {
namespace {

using TemporaryPath = std::array<char, 4096>;

// Owner and mode of the new file. The defaults are for a target that does not exist.
struct Attributes {
  uid_t user = 0;
  gid_t group = 0;
  mode_t mode = 0644;
};

bool readAttributes(const char* path, Attributes& attributes) {
  struct stat status{};
  if (stat(path, &status) == -1) return false;
  attributes = {.user = status.st_uid, .group = status.st_gid, .mode = status.st_mode};
  return true;
}

// chown clears the set-id bits, so chmod must come second. Failures of both are ignored: the
// content matters more.
void applyAttributes(const char* path, const Attributes& attributes) {
  [[maybe_unused]] const int ignored = chown(path, attributes.user, attributes.group);
  chmod(path, attributes.mode);
}

// Creates the temporary file in the target's directory, so that the rename stays within one file
// system. Returns null on failure. If fdopen fails, the descriptor and the temporary file stay
// behind (required).
std::FILE* openTemporary(const char* path, TemporaryPath& temporary) {
  const int length = std::snprintf(temporary.data(), temporary.size(), "%s.XXXXXX", path);
  if (static_cast<std::size_t>(length) >= temporary.size()) {  // a negative length wraps
    errno = ENAMETOOLONG;
    return nullptr;
  }
  const int descriptor = mkstemp(temporary.data());
  return descriptor == -1 ? nullptr : fdopen(descriptor, "w");
}

}  // namespace

int replaceFile(const char* path, FileWriter writer, void* context, int mustExist) {
  Attributes attributes;
  if (!readAttributes(path, attributes) && mustExist != 0) return -1;

  TemporaryPath temporary{};
  std::FILE* newFile = openTemporary(path, temporary);
  if (newFile == nullptr) return -1;

  std::FILE* oldFile = std::fopen(path, "r");
  if (oldFile == nullptr && mustExist != 0) {
    const int openError = errno;
    std::fclose(newFile);
    errno = openError;
    return -1;
  }
  const int result = writer(oldFile, newFile, context);
  std::fclose(newFile);
  if (oldFile != nullptr) std::fclose(oldFile);

  applyAttributes(temporary.data(), attributes);
  if (result != 0) {
    unlink(temporary.data());
    return result;
  }
  return std::rename(temporary.data(), path);
}

}  // namespace addrtool
