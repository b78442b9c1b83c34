#include "persist/replace_file.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"
#include "support/failing_call.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

// What a writer shall do, and what it was given.
struct Script {
  int result = 0;
  std::string text = "new\n";
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
  std::fputs(script.text.c_str(), newFile);
  return script.result;
}

int replace(const fs::path& path, Script& script, int mustExist) {
  errno = 0;
  return replaceFile(path.c_str(), playScript, &script, mustExist);
}

mode_t modeOf(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777U;
}

// A file that exists but cannot be opened, not even by root.
void makeSocket(const fs::path& path) {
  ASSERT_EQ(mknod(path.c_str(), S_IFSOCK | 0600U, 0), 0);
}

struct ReplaceFile : ::testing::Test {
  TemporaryDirectory directory;
  fs::path target = directory / "target";
  Script script;

  // Expects that the target has this text and nothing else is in its directory.
  void expectOnlyTarget(const std::string& text) const {
    EXPECT_EQ(readFile(target), text);
    EXPECT_EQ(listDirectory(directory.path()), Names{"target"});
  }

  // The temporary file, which must be the only file beside the target.
  fs::path leftover() const {
    Names names = listDirectory(directory.path());
    std::erase(names, "target");
    EXPECT_EQ(names.size(), 1U) << ::testing::PrintToString(names);
    if (names.size() != 1) return {};
    EXPECT_TRUE(names.front().starts_with("target."));
    EXPECT_EQ(names.front().size(), std::strlen("target.XXXXXX"));
    return directory / names.front();
  }
};

TEST_F(ReplaceFile, TheWriterTurnsTheOldContentIntoTheNew) {
  for (const int mustExist : {0, 1}) {
    writeFile(target, "old\n");
    EXPECT_EQ(replace(target, script, mustExist), 0);
    EXPECT_EQ(script.oldText, "old\n");
    expectOnlyTarget("new\n");
  }
  EXPECT_EQ(script.calls, 2);
}

TEST_F(ReplaceFile, AMissingTargetIsCreatedReadableByAll) {
  const mode_t before = umask(077);
  EXPECT_EQ(replace(target, script, 0), 0);
  umask(before);
  EXPECT_EQ(script.calls, 1);
  EXPECT_FALSE(script.hadOldFile);
  expectOnlyTarget("new\n");
  EXPECT_EQ(modeOf(target), 0644U);
}

TEST_F(ReplaceFile, AMissingTargetThatMustExistIsNotCreated) {
  for (const int mustExist : {1, 2, -1}) {
    EXPECT_EQ(replace(target, script, mustExist), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(script.calls, 0);
    EXPECT_EQ(listDirectory(directory.path()), Names{});
  }
}

TEST_F(ReplaceFile, ReadersSeeTheOldContentUntilTheWriterIsDone) {
  struct Look {
    fs::path target;
    std::string seen;
    Names names;
  } look{target, "", {}};
  writeFile(target, "old\n");
  const auto writer = [](std::FILE*, std::FILE* newFile, void* context) {
    auto& looking = *static_cast<Look*>(context);
    std::fputs("new\n", newFile);
    std::fflush(newFile);
    looking.seen = readFile(looking.target);
    looking.names = listDirectory(looking.target.parent_path());
    return 0;
  };
  EXPECT_EQ(replaceFile(target.c_str(), writer, &look, 1), 0);
  EXPECT_EQ(look.seen, "old\n");
  ASSERT_EQ(look.names.size(), 2U);
  EXPECT_EQ(look.names[0], "target");
  EXPECT_TRUE(look.names[1].starts_with("target.")) << look.names[1];
  EXPECT_EQ(look.names[1].size(), std::strlen("target.XXXXXX"));
}

TEST_F(ReplaceFile, TheLastOfTwoReplacementsWins) {
  writeFile(target, "old\n");
  const auto writer = [](std::FILE*, std::FILE* newFile, void* context) {
    Script other;
    other.text = "other\n";
    EXPECT_EQ(replace(*static_cast<fs::path*>(context), other, 1), 0);
    std::fputs("last\n", newFile);
    return 0;
  };
  EXPECT_EQ(replaceFile(target.c_str(), writer, &target, 1), 0);
  expectOnlyTarget("last\n");
}

TEST_F(ReplaceFile, TheModeIsKeptIncludingSetIdAndStickyBits) {
  // chown(2) clears set-id bits, so these modes show that chmod(2) comes after it.
  for (const mode_t mode : {0600U, 0644U, 0000U, 0777U, 04755U, 02755U, 06711U, 01644U, 07777U}) {
    writeFile(target, "old\n");
    ASSERT_EQ(chmod(target.c_str(), mode), 0);
    EXPECT_EQ(replace(target, script, 0), 0);
    EXPECT_EQ(modeOf(target), mode);
    ASSERT_EQ(chmod(target.c_str(), 0600), 0);
    EXPECT_EQ(readFile(target), "new\n");
  }
}

TEST_F(ReplaceFile, ALinkIsReplacedByAFileWithTheModeOfItsTarget) {
  writeFile(directory / "linked", "old\n");
  ASSERT_EQ(chmod((directory / "linked").c_str(), 0640), 0);
  fs::create_symlink("linked", target);
  EXPECT_EQ(replace(target, script, 1), 0);
  EXPECT_EQ(script.oldText, "old\n");
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target)));
  EXPECT_EQ(readFile(target), "new\n");
  EXPECT_EQ(modeOf(target), 0640U);
  EXPECT_EQ(readFile(directory / "linked"), "old\n");
}

TEST_F(ReplaceFile, ALinkToNothingOrToItselfIsAMissingTarget) {
  for (const auto& [linked, error] : {std::pair("missing", ENOENT), std::pair("target", ELOOP)}) {
    fs::remove(target);
    fs::create_symlink(linked, target);
    EXPECT_EQ(replace(target, script, 1), -1);
    EXPECT_EQ(errno, error);
    EXPECT_EQ(listDirectory(directory.path()), Names{"target"});
    EXPECT_EQ(replace(target, script, 0), 0);
    EXPECT_FALSE(script.hadOldFile);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target)));
    EXPECT_EQ(modeOf(target), 0644U);
  }
}

TEST_F(ReplaceFile, AFailedWriterIsReportedAndChangesNothing) {
  script.result = 5;
  EXPECT_EQ(replace(target, script, 0), 5);
  EXPECT_EQ(script.calls, 1);
  EXPECT_EQ(listDirectory(directory.path()), Names{});
  for (const int failure : {5, 1, -1, -7}) {
    writeFile(target, "old\n");
    script.result = failure;
    EXPECT_EQ(replace(target, script, 1), failure);
    expectOnlyTarget("old\n");
  }
}

TEST_F(ReplaceFile, AMissingDirectoryFailsWithItsErrno) {
  EXPECT_EQ(replace(directory / "missing" / "target", script, 0), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(script.calls, 0);

  writeFile(target, "old\n");
  EXPECT_EQ(replace(target / "below", script, 0), -1);
  EXPECT_EQ(errno, ENOTDIR);
  EXPECT_EQ(script.calls, 0);
}

TEST_F(ReplaceFile, ATargetThatCannotBeOpenedIsRewrittenWithItsMode) {
  makeSocket(target);
  ASSERT_EQ(chmod(target.c_str(), 0640), 0);
  EXPECT_EQ(replace(target, script, 0), 0);
  EXPECT_EQ(script.calls, 1);
  EXPECT_FALSE(script.hadOldFile);
  EXPECT_EQ(readFile(target), "new\n");
  EXPECT_EQ(modeOf(target), 0640U);
  EXPECT_EQ(listDirectory(directory.path()), Names{"target"});
}

TEST_F(ReplaceFile, ATargetWithoutReadPermissionIsRewrittenWithItsMode) {
  writeFile(target, "old\n");
  ASSERT_EQ(chmod(target.c_str(), 0), 0);
  const auto replaceWithoutPrivileges = [this] {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const std::array<__user_cap_data_struct, 2> none{};
    if (syscall(SYS_capset, &header, none.data()) != 0) _exit(1);
    _exit(replace(target, script, 0) == 0 && !script.hadOldFile ? 0 : 2);
  };
  EXPECT_EQ(runInChild(replaceWithoutPrivileges), silentSuccess);
  EXPECT_EQ(modeOf(target), 0U);
  ASSERT_EQ(chmod(target.c_str(), 0600), 0);
  EXPECT_EQ(readFile(target), "new\n");
}

TEST_F(ReplaceFile, ARequiredTargetThatCannotBeOpenedLeavesTheTemporaryFile) {
  makeSocket(target);
  for (const int mustExist : {1, 2, -1}) {
    EXPECT_EQ(replace(target, script, mustExist), -1);
    EXPECT_EQ(errno, ENXIO);
    EXPECT_EQ(script.calls, 0);
    EXPECT_TRUE(fs::is_socket(target));
    EXPECT_EQ(readFile(leftover()), "");
    fs::remove(leftover());
  }
}

// What the function does to the files of the directory, in order.
Names changesBy(const std::function<void()>& function, const fs::path& directory) {
  static const std::map<std::uint32_t, std::string> words{
      {IN_MODIFY, "write"},          {IN_CLOSE_WRITE, "close new"}, {IN_CLOSE_NOWRITE, "close old"},
      {IN_ATTRIB, "owner and mode"}, {IN_MOVED_TO, "rename"},       {IN_DELETE, "unlink"}};
  const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  EXPECT_NE(inotify_add_watch(watch, directory.c_str(), IN_ALL_EVENTS), -1);
  function();
  std::array<char, 4096> buffer{};
  const auto size = static_cast<std::size_t>(read(watch, buffer.data(), buffer.size()));
  close(watch);
  Names changes;
  inotify_event event{};
  for (std::size_t at = 0; at < size; at += sizeof(event) + event.len) {
    std::memcpy(&event, &buffer.at(at), sizeof(event));
    if (words.contains(event.mask)) changes.push_back(words.at(event.mask));
  }
  return changes;
}

TEST_F(ReplaceFile, OwnerAndModeAreSetAfterBothClosesEvenIfTheWriterFails) {
  for (const auto& [result, end] : {std::pair(0, "rename"), std::pair(5, "unlink")}) {
    writeFile(target, "old\n");
    script.result = result;
    EXPECT_EQ(changesBy([this] { replace(target, script, 1); }, directory.path()),
              (Names{"write", "close new", "close old", "owner and mode", end}));
  }
}

TEST_F(ReplaceFile, ADirectoryAsTargetFailsAtRenameAndLeavesTheTemporaryFile) {
  fs::create_directory(target);
  EXPECT_EQ(replace(target, script, 0), -1);
  EXPECT_EQ(errno, EISDIR);
  EXPECT_EQ(script.calls, 1);
  EXPECT_TRUE(script.hadOldFile);  // a directory can be opened but not read
  EXPECT_EQ(script.oldText, "");
  EXPECT_TRUE(fs::is_directory(target));
  EXPECT_EQ(readFile(leftover()), "new\n");
  EXPECT_EQ(modeOf(leftover()), modeOf(target));
}

TEST_F(ReplaceFile, AFailedFdopenLeaksTheDescriptorAndTheFile) {
  writeFile(target, "old\n");
  const int nextDescriptor = dup(STDIN_FILENO);
  close(nextDescriptor);
  {
    const FailingCall failing(Call::Fdopen, ENOMEM);
    EXPECT_EQ(replace(target, script, 0), -1);
    EXPECT_EQ(errno, ENOMEM);
  }
  EXPECT_EQ(script.calls, 0);
  EXPECT_EQ(readFile(target), "old\n");
  const fs::path file = leftover();
  EXPECT_EQ(readFile(file), "");
  struct stat byName {};
  struct stat byDescriptor {};
  EXPECT_EQ(stat(file.c_str(), &byName), 0);
  EXPECT_EQ(fstat(nextDescriptor, &byDescriptor), 0);
  EXPECT_EQ(byName.st_ino, byDescriptor.st_ino);
  close(nextDescriptor);
}

TEST_F(ReplaceFile, AFailedChangeOfOwnerOrModeIsIgnored) {
  for (const Call call : {Call::Chmod, Call::Chown}) {
    writeFile(target, "old\n");
    ASSERT_EQ(chmod(target.c_str(), 0751), 0);
    const FailingCall failing(call, EPERM);
    EXPECT_EQ(replace(target, script, 1), 0);
    expectOnlyTarget("new\n");
    EXPECT_EQ(modeOf(target), call == Call::Chown ? 0751U : 0600U);
  }
}

TEST_F(ReplaceFile, AFailedCloseKeepsTheErrnoOfTheFirstFailure) {
  makeSocket(target);
  const FailingCall failing(Call::Fclose, ENOSPC);
  EXPECT_EQ(replace(target, script, 1), -1);
  EXPECT_EQ(errno, ENXIO);
}

TEST_F(ReplaceFile, AWriteErrorAtCloseIsIgnored) {
  writeFile(target, "old\n");
  const Outcome outcome = runInChild([this] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit nothing{0, 0};
    setrlimit(RLIMIT_FSIZE, &nothing);
    std::_Exit(replace(target, script, 1) == 0 ? 0 : 1);
  });
  EXPECT_EQ(outcome, (Outcome{0, 0, "", ""}));
  expectOnlyTarget("");
}

TEST_F(ReplaceFile, EveryDescriptorIsClosedAfterwards) {
  const auto openDescriptors = [] { return listDirectory("/proc/self/fd").size(); };
  const std::size_t before = openDescriptors();
  EXPECT_EQ(replace(target, script, 0), 0);
  EXPECT_EQ(replace(target, script, 1), 0);
  script.result = 5;
  EXPECT_EQ(replace(target, script, 1), 5);
  fs::remove(target);
  makeSocket(target);
  EXPECT_EQ(replace(target, script, 1), -1);
  EXPECT_EQ(openDescriptors(), before);
}

// A path of that length in existing directories.
std::string makeLongPath(const fs::path& base, std::size_t length) {
  std::string path = base;
  while (length - path.size() > 240) {
    path += '/' + std::string(200, 'd');
    fs::create_directory(path);
  }
  return path + '/' + std::string(length - path.size() - 1, 'f');
}

TEST_F(ReplaceFile, APathHasAtMost4088Bytes) {
  const std::string longest = makeLongPath(directory.path(), 4088);
  ASSERT_EQ(longest.size(), 4088U);
  EXPECT_EQ(replace(longest, script, 0), 0);
  EXPECT_EQ(readFile(longest), "new\n");
  fs::remove(longest);

  const std::string path = longest + 'f';
  EXPECT_EQ(replace(path, script, 1), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(replace(path, script, 0), -1);
  EXPECT_EQ(errno, ENAMETOOLONG);
  EXPECT_EQ(listDirectory(fs::path(path).parent_path()), Names{});

  writeFile(path, "old\n");
  for (const int mustExist : {0, 1}) {
    EXPECT_EQ(replace(path, script, mustExist), -1);
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_EQ(readFile(path), "old\n");
    EXPECT_EQ(listDirectory(fs::path(path).parent_path()).size(), 1U);
  }
  EXPECT_EQ(script.calls, 1);
}

}  // namespace
}  // namespace addrtool::testing
