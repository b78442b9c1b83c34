// Temporary directories, whole files, and streams whose reads are given.
#pragma once

#include <cstdio>
#include <filesystem>
#include <queue>
#include <string>
#include <vector>

namespace addrtool::testing {

namespace fs = std::filesystem;

/// A new directory. The destructor removes it with its contents.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  fs::path operator/(const std::string& name) const { return path_ / name; }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

/// Returns all bytes of the file. Throws if it cannot be read.
std::string readFile(const fs::path& path);

/// Creates or overwrites the file. Throws if it cannot be written.
void writeFile(const fs::path& path, const std::string& contents);

/// A stream that reads these texts one after the other. An empty text is a read error.
std::FILE* openTexts(std::queue<std::string>& texts);

/// Returns the sorted names in the directory.
std::vector<std::string> listDirectory(const fs::path& path);

}  // namespace addrtool::testing
