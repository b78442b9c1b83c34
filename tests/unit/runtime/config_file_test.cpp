#include "runtime/config_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <tuple>
#include <utility>

#include "support/child_process.h"
#include "support/failing_call.h"
#include "support/files.h"
#include "support/log_recorder.h"

namespace addrtool::testing {
namespace {

using Definitions = std::vector<std::pair<std::string, std::string>>;
using Log = std::vector<LoggedMessage>;

// Reads files into one table and records the log.
struct ConfigFile : ::testing::Test {
  int readPath(const std::string& file) {
    table.reset(static_cast<RuntimeConfiguration*>(std::calloc(1, sizeof(RuntimeConfiguration))));
    LogRecorder::take();
    errno = 0;
    return readConfigFile(file.c_str(), table.get());
  }

  int readText(const std::string& text) {
    writeFile(path, text);
    return readPath(path);
  }

  // In the order of the table.
  Definitions definitions() const {
    Definitions result;
    for (std::uint32_t i = 0; i < table->count; ++i) {
      result.emplace_back(table->entries[i].name, table->entries[i].value);
    }
    return result;
  }

  // Expects what a file with this text defines and what is logged about it.
  void expectContent(const std::string& text, const Definitions& expected, const Log& log = {}) {
    SCOPED_TRACE("the file \"" + text + '"');
    EXPECT_EQ(readText(text), 0);
    EXPECT_EQ(definitions(), expected);
    EXPECT_EQ(LogRecorder::take(), log);
  }

  // Expects that each of the texts defines this value after a name.
  void expectValue(const std::string& value, const std::vector<std::string>& texts) {
    for (const std::string& text : texts) expectContent("NAME " + text, {{"NAME", value}});
  }

  void expectFailure(const std::string& file, int error, const std::string& message) {
    EXPECT_EQ(readPath(file), -1);
    EXPECT_EQ(errno, error);
    EXPECT_EQ(LogRecorder::take(), (Log{{12, message}}));
    EXPECT_EQ(table->capacity, 20U);  // the slots were allocated first
  }

  TemporaryDirectory directory;
  std::string path = directory / "kel.conf";
  LogRecorder recorder;
  std::unique_ptr<RuntimeConfiguration, void (*)(RuntimeConfiguration*)> table{nullptr, freeConfig};
};

LoggedMessage noSpace(const std::string& definition) {
  return {12,
          "Invalid variable definition " + definition + "\nExpected a space after variable name\n"};
}

LoggedMessage noValue(const std::string& definition) {
  return {12, "Invalid variable definition " + definition + "\nExpected a value"};
}

// That many lines.
std::string numberedLines(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += "NAME_" + std::to_string(i) + " value_" + std::to_string(i) + "\n";
  }
  return text;
}

TEST_F(ConfigFile, EveryByteHasOneMeaningInEachPlace) {
  const std::string nameBytes = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";
  for (int value = 1; value < 256; ++value) {
    if (value == '\n') continue;
    const std::string byte(1, static_cast<char>(value));
    const bool isName = nameBytes.find(byte) != std::string::npos;
    const bool isWhite = std::string("\t\v\f\r ").find(byte) != std::string::npos;
    const bool isHash = value == '#';

    const auto expect = [this](const std::string& text, const Definitions& expected,
                               const LoggedMessage& unlessDefined) {
      expectContent(text, expected, expected.empty() ? Log{unlessDefined} : Log{});
    };
    if (isHash) {
      expectContent(byte + "A v", {});
      expect("A " + byte + "w", {}, noValue("A #w"));
    } else {
      expect(byte + "A v",
             isName    ? Definitions{{byte + "A", "v"}}
             : isWhite ? Definitions{{"A", "v"}}
                       : Definitions{},
             noSpace(byte + "A v"));
      expectContent("A " + byte + "w", {{"A", isWhite ? "w" : byte + "w"}});
    }
    expect("A" + byte + "B v",
           isName    ? Definitions{{"A" + byte + "B", "v"}}
           : isWhite ? Definitions{{"A", "B v"}}
                     : Definitions{},
           noSpace("A" + byte + "B v"));
    expectContent("A v" + byte + "w", {{"A", isHash ? "v" : "v" + byte + "w"}});
    expectContent("A v" + byte, {{"A", isHash || isWhite ? "v" : "v" + byte}});
  }
}

TEST_F(ConfigFile, AValueKeepsInnerWhiteSpaceAndQuotes) {
  expectValue("value", {"value\n", "value", "\t \v\f\r value\n"});
  for (const std::string value : {"a b", "a  b\tc", "a b   c d", "\"a b\"", "'a b'", "= a : b"}) {
    expectValue(value, {value + "\n"});
  }
}

TEST_F(ConfigFile, AHashAfterItsFirstCharacterEndsAValue) {
  expectValue("a", {"a#b\n", "a#"});
  expectValue("ab", {"ab#c#d\n"});
  expectValue("a b", {"a b#c\n"});
  expectValue("\"a", {"\"a # b\"\n"});
}

TEST_F(ConfigFile, AnOddRunOfTrailingWhiteSpaceLosesItsLastCharacter) {
  expectValue("value", {"value ", "value #c\n"});
  expectValue("value  ", {"value   ", "value   # c \n"});
  for (const std::string value : {"v", "value  ", "value    ", "value\t\r", "a b  "}) {
    expectValue(value, {value + "\n"});
  }
}

TEST_F(ConfigFile, AnEvenRunOfTrailingWhiteSpaceStays) {
  expectValue("value  ", {"value  ", "value  #c\n"});
  for (const std::string value : {"value \n", "value   \n", "value\r\n", "a  b \n"}) {
    expectValue(value, {value});
  }
}

TEST_F(ConfigFile, BlankLinesAndCommentsAreSkipped) {
  for (const char* const line : {"", "\n", "   \n", " \t\r\n", "\v\f\n", "# comment\n", "#\n", "#",
                                 "  # NAME value\n", "#NAME value\n", "\n\n\n"}) {
    expectContent(line, {});
  }
}

TEST_F(ConfigFile, ANameMustBeFollowedByWhiteSpaceAndAValue) {
  for (const std::string line : {"NAME=value\n", "NAME=value", "NAME# value\n", "NAME", "= value\n",
                                 "\"NAME\" value\n", "\xef\xbb\xbfNAME value\n"}) {
    expectContent(line, {}, {noSpace(line)});
    expectContent("  " + line, {}, {noSpace(line)});
  }
  for (const std::string line : {"NAME\n", "NAME \t \n", "NAME ", "NAME # x\n", "NAME #\n"}) {
    expectContent(line, {}, {noValue(line)});
    expectContent("  " + line, {}, {noValue(line)});
  }
}

TEST_F(ConfigFile, ABadLineIsSkippedAndTheTableIsSortedAtTheEnd) {
  expectContent("B 1\nB=2\nC\nE 2\n# D 4\nA 5\nB 3\nB=4\nB", {{"A", "5"}, {"B", "3"}, {"E", "2"}},
                {noSpace("B=2\n"), noValue("C\n"), noSpace("B=4\n"), noSpace("B")});
  EXPECT_EQ(table->sorted, 1);
}

TEST_F(ConfigFile, AnEmptyFileTakesTwentySlotsAndTwentyFiveDefinitionsForty) {
  expectContent("", {});
  EXPECT_EQ(table->capacity, 20U);

  EXPECT_EQ(readText(numberedLines(25)), 0);
  EXPECT_EQ(table->count, 25U);
  EXPECT_EQ(table->capacity, 40U);
  for (int i = 0; i < 25; ++i) {
    EXPECT_EQ(findConfigEntry(table.get(), ("NAME_" + std::to_string(i)).c_str()),
              "value_" + std::to_string(i));
  }
}

TEST_F(ConfigFile, LinesOfAnyLengthAreRead) {
  const std::string name(1000000, 'n');
  const std::string value(1000000, 'v');
  expectContent(name + " " + value + "\nB 2\n#" + name + "\n" + value, {{"B", "2"}, {name, value}},
                {noSpace(value)});
}

TEST_F(ConfigFile, ABackslashContinuesNoLine) {
  expectContent("A v\\\nB w\n", {{"A", "v\\"}, {"B", "w"}});
}

TEST_F(ConfigFile, AnyNumberOfDefinitionsIsRead) {
  EXPECT_EQ(readText(numberedLines(3000)), 0);
  EXPECT_EQ(table->count, 3000U);
}

TEST_F(ConfigFile, TheModeOfTheFileDoesNotMatter) {
  for (const unsigned mode : {0666U, 0777U, 0400U}) {
    writeFile(path, "A v\n");
    fs::permissions(path, fs::perms{mode});
    EXPECT_EQ(readPath(path), 0);
    EXPECT_EQ(definitions(), (Definitions{{"A", "v"}}));
    fs::remove(path);
  }
}

TEST_F(ConfigFile, ALineEndsAtANulByte) {
  using namespace std::string_literals;
  expectContent("NAME value\0 more\n"s, {{"NAME", "value"}});
  expectContent("NAME value \0 more\n"s, {{"NAME", "value"}});
  expectContent("\0NAME value\n"s, {});
  expectContent("NAME\0 value\n"s, {}, {noSpace("NAME")});
  expectContent("NAME \0value\n"s, {}, {noValue("NAME ")});
  expectContent("A 1\0\nB 2\n\0\0\0\n\0"s, {{"A", "1"}, {"B", "2"}});
}

TEST_F(ConfigFile, AFileThatCannotBeOpenedFailsWithItsErrno) {
  writeFile(path, "");
  fs::create_symlink("loop", directory / "loop");
  const std::vector<std::tuple<std::string, int, std::string>> rows{
      {directory / "missing", ENOENT, ": No such file or directory\n"},
      {path + "/below", ENOTDIR, ": Not a directory\n"},
      {directory / "loop", ELOOP, ": Too many levels of symbolic links\n"}};
  for (const auto& [file, error, reason] : rows) {
    expectFailure(file, error, "unable to open configuration file " + file + reason);
  }
}

const std::string cannotRead = "Unable to read configuration file: ";

TEST_F(ConfigFile, AFileThatCannotBeReadToItsEndFails) {
  expectFailure(directory.path(), EISDIR, cannotRead + "Is a directory");
  expectFailure("/proc/self/mem", EIO, cannotRead + "Input/output error");
}

// A signal interrupts the read of a FIFO after a partial line. Logging that line changes errno.
TEST_F(ConfigFile, AReadErrorKeepsItsErrnoWhenAPartialLineIsLogged) {
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const int writer = open(path.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(write(writer, "A 1\nB=2", 7), 7);
  struct sigaction interrupt{};
  interrupt.sa_handler = [](int /*signal*/) {};
  struct sigaction before{};
  sigaction(SIGALRM, &interrupt, &before);
  constexpr itimerval every10Milliseconds{{0, 10000}, {0, 10000}};
  constexpr itimerval never{};
  setitimer(ITIMER_REAL, &every10Milliseconds, nullptr);
  const int result = readPath(path);
  const int error = errno;
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &before, nullptr);
  close(writer);

  EXPECT_EQ(result, -1);
  EXPECT_EQ(error, EINTR);
  EXPECT_EQ(definitions(), (Definitions{{"A", "1"}}));
  EXPECT_EQ(LogRecorder::take(),
            (Log{noSpace("B=2"), {12, cannotRead + "Interrupted system call"}}));
}

TEST_F(ConfigFile, AFailedCloseKeepsTheErrnoOfTheFirstFailure) {
  const FailingCall failing(Call::Fclose, ENOSPC);
  expectFailure(directory.path(), EISDIR, cannotRead + "Is a directory");
}

TEST_F(ConfigFile, AFailedReadSortsTheTableAndAFailedStoreDoesNot) {
  writeFile(path, "B 1\nA 2\nC 3\n");
  {
    const FailingAllocations failing(9);  // after table, slots, line, two copies, line, two copies
    EXPECT_EQ(readPath(path), -1);
    EXPECT_EQ(table->sorted, 1);
    EXPECT_EQ(definitions(), (Definitions{{"A", "2"}, {"B", "1"}}));
  }
  const FailingAllocations failing(10);  // the next one, a copy of the third name
  EXPECT_EQ(readPath(path), -1);
  EXPECT_EQ(table->sorted, 0);
  EXPECT_EQ(definitions(), (Definitions{{"B", "1"}, {"A", "2"}}));
}

TEST_F(ConfigFile, EveryFailedAllocationFailsTheReading) {
  EXPECT_EQ(readText(numberedLines(21)), 0);
  const Definitions all = definitions();
  int nth = 2;  // the first one makes the table itself
  for (;; ++nth) {
    SCOPED_TRACE(nth);
    const FailingAllocations failing(nth);
    if (readPath(path) == 0) break;
    EXPECT_EQ(errno, ENOMEM);
    const Log log = LogRecorder::take();
    ASSERT_EQ(log.size(), nth == 2 ? 0U : 1U);
    for (const auto& [priority, text] : log) {
      EXPECT_EQ(priority, 12);
      EXPECT_TRUE(text.ends_with(": Cannot allocate memory")) << text;
    }
    EXPECT_LE(definitions().size(), all.size());
  }
  EXPECT_EQ(nth - 2, 1 + 22 + 2 * 21 + 1);  // slots, lines and end of file, copies, more slots
  EXPECT_EQ(definitions(), all);
}

TEST_F(ConfigFile, EveryDescriptorIsClosed) {
  const auto openDescriptors = [] { return listDirectory("/proc/self/fd").size(); };
  const std::size_t before = openDescriptors();
  readText("A 1\n");
  readPath(directory / "missing");
  readPath(directory.path());
  {
    const FailingAllocations failing(5);
    EXPECT_EQ(readPath(path), -1);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ConfigFile, ReadingAddsToTheTable) {
  EXPECT_EQ(readText("A 1\nB 2\n"), 0);
  writeFile(path, "C 3\nA 4\n");
  EXPECT_EQ(readConfigFile(path.c_str(), table.get()), 0);
  EXPECT_EQ(definitions(), (Definitions{{"A", "4"}, {"B", "2"}, {"C", "3"}}));
}

TEST(ConfigFileLog, IsSilentWithTheDefaultSettings) {
  const TemporaryDirectory directory;
  writeFile(directory / "kel.conf", "NAME=value\nNAME\n");
  expectInChild(silentSuccess, [&] {
    RuntimeConfiguration table{};
    readConfigFile((directory / "missing").c_str(), &table);
    readConfigFile(directory.path().c_str(), &table);
    readConfigFile((directory / "kel.conf").c_str(), &table);
    std::free(table.entries);
  });
}

}  // namespace
}  // namespace addrtool::testing
