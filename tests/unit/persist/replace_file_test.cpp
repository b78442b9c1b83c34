// What only a caller of the function can see. Transcripts hold owners, modes, links and full disks.
#include "persist/replace_file.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <map>
#include <utility>

#include "support/child_process.h"
#include "support/failing_call.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

using Names = std::vector<std::string>;

// What a writer shall do, and what it was given.
struct Script {
  int result = 0;
  int calls = 0;
  bool hadOldFile = false;
  std::string oldText;
};

int playScript(std::FILE* oldFile, std::FILE* newFile, void* context) {
  auto& script = *static_cast<Script*>(context);
  ++script.calls;
  script.hadOldFile = oldFile != nullptr;
  std::array<char, 100> buffer{};
  if (oldFile != nullptr) {
    script.oldText.assign(buffer.data(), std::fread(buffer.data(), 1, buffer.size(), oldFile));
  }
  std::fputs("new\n", newFile);
  return script.result;
}

mode_t modeOf(const fs::path& path) {
  struct stat status{};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777U;
}

void setMode(const fs::path& path, mode_t mode) {
  ASSERT_EQ(chmod(path.c_str(), mode), 0) << path;
}

struct ReplaceFile : ::testing::Test {
  int replace(const fs::path& path, int mustExist) {
    errno = 0;
    return replaceFile(path.c_str(), playScript, &script, mustExist);
  }
  int replace(int mustExist) { return replace(target, mustExist); }

  void expectFailure(const fs::path& path, int mustExist, int error) {
    EXPECT_EQ(replace(path, mustExist), -1);
    EXPECT_EQ(errno, error);
  }

  // A file that exists but cannot be opened, not even by root.
  void makeTargetASocket() const { ASSERT_EQ(mknod(target.c_str(), S_IFSOCK | 0600U, 0), 0); }

  Names names() const { return listDirectory(directory.path()); }

  // Expects that the target has this text and mode, and that nothing else is in its directory.
  void expectOnlyTarget(const std::string& text, mode_t mode = 0644) const {
    EXPECT_EQ(readFile(target), text);
    EXPECT_EQ(modeOf(target), mode);
    EXPECT_EQ(names(), Names{"target"});
  }

  // The temporary file, which must be the only file beside the target.
  fs::path leftover() const {
    Names others = names();
    std::erase(others, "target");
    EXPECT_EQ(others.size(), 1U) << ::testing::PrintToString(others);
    const std::string name = others.at(0);
    EXPECT_TRUE(name.starts_with("target.") && name.size() == std::strlen("target.XXXXXX")) << name;
    return directory / name;
  }

  TemporaryDirectory directory;
  fs::path target = directory / "target";
  Script script;
};

TEST_F(ReplaceFile, TheWriterTurnsTheOldContentIntoTheNew) {
  for (const int mustExist : {0, 1}) {
    writeFile(target, "old\n");
    EXPECT_EQ(replace(mustExist), 0);
    EXPECT_EQ(script.oldText, "old\n");
    expectOnlyTarget("new\n");
  }
  EXPECT_EQ(script.calls, 2);
}

TEST_F(ReplaceFile, AMissingTargetThatMustExistIsNotCreated) {
  for (const int mustExist : {1, 2, -1}) expectFailure(target, mustExist, ENOENT);
  EXPECT_EQ(script.calls, 0);
  EXPECT_EQ(names(), Names{});
}

TEST_F(ReplaceFile, TheWriterGetsNoFileInPlaceOfAMissingTarget) {
  EXPECT_EQ(replace(0), 0);
  EXPECT_EQ(script.calls, 1);
  EXPECT_FALSE(script.hadOldFile);
  expectOnlyTarget("new\n");
}

TEST_F(ReplaceFile, ReadersSeeTheOldContentUntilTheWriterIsDone) {
  writeFile(target, "old\n");
  const auto writer = [](std::FILE*, std::FILE* newFile, void* context) {
    const auto& test = *static_cast<const ReplaceFile*>(context);
    std::fputs("new\n", newFile);
    std::fflush(newFile);
    EXPECT_EQ(readFile(test.target), "old\n");
    EXPECT_EQ(readFile(test.leftover()), "new\n");
    return 0;
  };
  EXPECT_EQ(replaceFile(target.c_str(), writer, this, 1), 0);
  expectOnlyTarget("new\n");
}

TEST_F(ReplaceFile, TheLastOfTwoReplacementsWins) {
  writeFile(target, "old\n");
  const auto writer = [](std::FILE*, std::FILE* newFile, void* context) {
    EXPECT_EQ(static_cast<ReplaceFile*>(context)->replace(1), 0);
    std::fputs("last\n", newFile);
    return 0;
  };
  EXPECT_EQ(replaceFile(target.c_str(), writer, this, 1), 0);
  expectOnlyTarget("last\n");
}

TEST_F(ReplaceFile, AFailedWriterIsReportedAndChangesNothing) {
  script.result = 5;
  EXPECT_EQ(replace(0), 5);
  EXPECT_EQ(script.calls, 1);
  EXPECT_EQ(names(), Names{});
  for (const int failure : {5, 1, -1, -7}) {
    writeFile(target, "old\n");
    script.result = failure;
    EXPECT_EQ(replace(1), failure);
    expectOnlyTarget("old\n");
  }
}

TEST_F(ReplaceFile, ATargetThatCannotBeOpenedIsRewrittenWithItsMode) {
  makeTargetASocket();
  setMode(target, 0640);
  EXPECT_EQ(replace(0), 0);
  EXPECT_EQ(script.calls, 1);
  EXPECT_FALSE(script.hadOldFile);
  expectOnlyTarget("new\n", 0640);
}

TEST_F(ReplaceFile, ARequiredTargetThatCannotBeOpenedLeavesTheTemporaryFile) {
  makeTargetASocket();
  for (const int mustExist : {1, 2, -1}) {
    expectFailure(target, mustExist, ENXIO);
    EXPECT_TRUE(fs::is_socket(target));
    EXPECT_EQ(readFile(leftover()), "");
    fs::remove(leftover());
  }
  EXPECT_EQ(script.calls, 0);
}

TEST_F(ReplaceFile, OwnerAndModeAreSetAfterBothClosesEvenIfTheWriterFails) {
  const std::map<std::uint32_t, std::string> words{
      {IN_MODIFY, "write"},          {IN_CLOSE_WRITE, "close new"}, {IN_CLOSE_NOWRITE, "close old"},
      {IN_ATTRIB, "owner and mode"}, {IN_MOVED_TO, "rename"},       {IN_DELETE, "unlink"}};
  for (const auto& [result, end] : {std::pair(0, "rename"), {5, "unlink"}}) {
    writeFile(target, "old\n");
    script.result = result;
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    EXPECT_NE(inotify_add_watch(watch, directory.path().c_str(), IN_ALL_EVENTS), -1);
    replace(1);
    std::array<char, 4096> buffer{};
    const auto size = static_cast<std::size_t>(read(watch, buffer.data(), buffer.size()));
    close(watch);
    Names changes;
    inotify_event event{};
    for (std::size_t at = 0; at < size; at += sizeof(event) + event.len) {
      std::memcpy(&event, &buffer.at(at), sizeof(event));
      if (words.contains(event.mask)) changes.push_back(words.at(event.mask));
    }
    EXPECT_EQ(changes, (Names{"write", "close new", "close old", "owner and mode", end}));
  }
}

TEST_F(ReplaceFile, AFailedFdopenLeaksTheDescriptorAndTheFile) {
  writeFile(target, "old\n");
  const int nextDescriptor = dup(STDIN_FILENO);
  close(nextDescriptor);
  {
    const FailingCall failing(Call::Fdopen, ENOMEM);
    expectFailure(target, 0, ENOMEM);
  }
  EXPECT_EQ(script.calls, 0);
  EXPECT_EQ(readFile(target), "old\n");
  EXPECT_EQ(readFile(leftover()), "");
  EXPECT_TRUE(fs::equivalent("/proc/self/fd/" + std::to_string(nextDescriptor), leftover()));
  close(nextDescriptor);
}

TEST_F(ReplaceFile, AFailedCloseKeepsTheErrnoOfTheFirstFailure) {
  makeTargetASocket();
  const FailingCall failing(Call::Fclose, ENOSPC);
  expectFailure(target, 1, ENXIO);
}

TEST_F(ReplaceFile, EveryDescriptorIsClosedAfterwards) {
  const auto openDescriptors = [] { return listDirectory("/proc/self/fd").size(); };
  const std::size_t before = openDescriptors();
  EXPECT_EQ(replace(0), 0);
  EXPECT_EQ(replace(1), 0);
  script.result = 5;
  EXPECT_EQ(replace(1), 5);
  fs::remove(target);
  makeTargetASocket();
  EXPECT_EQ(replace(1), -1);
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ReplaceFile, APathHasAtMost4088Bytes) {
  fs::path parent = directory.path();
  for (; parent.native().size() < 4088 - 240; parent /= std::string(200, 'd')) {
  }
  fs::create_directories(parent);
  const fs::path longest = parent / std::string(4088 - parent.native().size() - 1, 'f');
  EXPECT_EQ(replace(longest, 0), 0);
  EXPECT_EQ(readFile(longest), "new\n");
  fs::remove(longest);

  const fs::path tooLong = longest.native() + 'f';
  expectFailure(tooLong, 1, ENOENT);
  expectFailure(tooLong, 0, ENAMETOOLONG);
  EXPECT_EQ(listDirectory(parent), Names{});

  writeFile(tooLong, "old\n");
  for (const int mustExist : {0, 1}) {
    expectFailure(tooLong, mustExist, ENAMETOOLONG);
    EXPECT_EQ(readFile(tooLong), "old\n");
    EXPECT_EQ(listDirectory(parent).size(), 1U);
  }
  EXPECT_EQ(script.calls, 1);
}

}  // namespace
}  // namespace addrtool::testing
