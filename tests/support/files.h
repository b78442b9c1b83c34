// Temporary directories, whole files, streams whose reads are given, and patterns in texts.
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

/// Returns the matches of the extended pattern, regex(7), in the text: each one whole, then its
/// groups. A group that takes no part is empty. Stops at an empty match. Throws
/// std::invalid_argument if the pattern is malformed.
std::vector<std::vector<std::string>> findAll(const std::string& text, const std::string& pattern);

}  // namespace addrtool::testing
