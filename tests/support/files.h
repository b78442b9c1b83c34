// Files for tests: a directory that goes away by itself, whole files in and out.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace addrtool::testing {

/// A fresh directory, removed with all that is in it at the end of the test.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  TemporaryDirectory(TemporaryDirectory&&) = delete;
  TemporaryDirectory& operator=(TemporaryDirectory&&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// The whole file, byte for byte. Raises when it cannot be read.
std::string readFile(const std::filesystem::path& path);

/// Makes or replaces the file, byte for byte. Raises when it cannot be written.
void writeFile(const std::filesystem::path& path, const std::string& contents);

/// The names in the directory, sorted.
std::vector<std::string> listDirectory(const std::filesystem::path& path);

}  // namespace addrtool::testing
