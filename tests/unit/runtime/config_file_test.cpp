#include "runtime/config_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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
  int readPath(const std::string& path) {
    table.reset(static_cast<RuntimeConfiguration*>(std::calloc(1, sizeof(RuntimeConfiguration))));
    LogRecorder::take();
    errno = 0;
    return readConfigFile(path.c_str(), table.get());
  }

  int readText(const std::string& text) {
    writeFile(directory / "kel.conf", text);
    return readPath(directory / "kel.conf");
  }

  // In the order of the names.
  Definitions definitions() const {
    Definitions result;
    for (std::uint32_t i = 0; i < table->count; ++i) {
      result.emplace_back(table->entries[i].name, table->entries[i].value);
    }
    return result;
  }

  // Expects what a file with this one line defines or logs.
  void expectDefinition(const std::string& line, const std::string& name,
                        const std::string& value) {
    EXPECT_EQ(readText(line), 0);
    EXPECT_EQ(definitions(), (Definitions{{name, value}})) << "for the line \"" << line << '"';
    EXPECT_EQ(LogRecorder::take(), Log{});
  }
  void expectNothing(const std::string& line, const Log& log) {
    EXPECT_EQ(readText(line), 0);
    EXPECT_EQ(definitions(), Definitions{}) << "for the line \"" << line << '"';
    EXPECT_EQ(LogRecorder::take(), log) << "for the line \"" << line << '"';
  }

  TemporaryDirectory directory;
  LogRecorder recorder;
  std::unique_ptr<RuntimeConfiguration, void (*)(RuntimeConfiguration*)> table{nullptr, freeConfig};
};

std::size_t openDescriptors() {
  return listDirectory("/proc/self/fd").size();
}

LoggedMessage noSpace(const std::string& definition) {
  return {12,
          "Invalid variable definition " + definition + "\nExpected a space after variable name\n"};
}

LoggedMessage noValue(const std::string& definition) {
  return {12, "Invalid variable definition " + definition + "\nExpected a value"};
}

LoggedMessage cannotOpen(const std::string& path, const std::string& reason) {
  return {12, "unable to open configuration file " + path + ": " + reason + "\n"};
}

TEST_F(ConfigFile, ADefinitionIsANameWhiteSpaceAndAValue) {
  expectDefinition("NAME\tvalue\n", "NAME", "value");
  expectDefinition(" \t\v\f\rNAME value\n", "NAME", "value");
  expectDefinition("_a9Z_ 1\n", "_a9Z_", "1");
  expectDefinition("9 v\n", "9", "v");
}

TEST_F(ConfigFile, AValueEndsAtAHashAndKeepsInnerAndSomeTrailingWhiteSpace) {
  // The text after "NAME " and the value that it defines.
  const std::vector<std::pair<const char*, const char*>> rows{
      {"value\n", "value"},
      {"value", "value"},
      {"\t \v\f\r value\n", "value"},
      {"=\n", "="},
      {"\"a\\\n", "\"a\\"},
      {"\xe4\xff\n", "\xe4\xff"},
      // Inner white space belongs to the value.
      {"a b\n", "a b"},
      {"a  b\tc\n", "a  b\tc"},
      {"a b   c d\n", "a b   c d"},
      // A hash after the first character ends it.
      {"a#b\n", "a"},
      {"a#", "a"},
      {"ab#c#d\n", "ab"},
      {"a b#c\n", "a b"},
      // An odd run of trailing white space loses its last character, an even run stays.
      {"v\n", "v"},
      {"value \n", "value \n"},
      {"value  \n", "value  "},
      {"value   \n", "value   \n"},
      {"value    \n", "value    "},
      {"value\r\n", "value\r\n"},
      {"value\t\r\n", "value\t\r"},
      {"value ", "value"},
      {"value  ", "value  "},
      {"value   ", "value  "},
      {"value #c\n", "value"},
      {"value  #c\n", "value  "},
      {"value   # c \n", "value  "},
      {"a  b \n", "a  b \n"},
      {"a b  \n", "a b  "}};
  for (const auto& [text, value] : rows) {
    expectDefinition(std::string("NAME ") + text, "NAME", value);
  }
}

TEST_F(ConfigFile, BlankLinesAndCommentsAreSkipped) {
  for (const char* const line : {"", "\n", "   \n", " \t\r\n", "\v\f\n", "# comment\n", "#\n", "#",
                                 "  # NAME value\n", "#NAME value\n", "\n\n\n"}) {
    expectNothing(line, {});
  }
}

TEST_F(ConfigFile, ANameMustBeFollowedByWhiteSpaceAndAValue) {
  for (const std::string line :
       {"NAME=value\n", "NAME=value", "NAME# value\n", "NAME-D value\n", "NAME.D value # c\n",
        "N\xe4ME value\n", "NAME\xa0value\n", "NAME", "= value\n", "\"NAME\" value\n", "\xff\n"}) {
    expectNothing(line, {noSpace(line)});
    expectNothing("  " + line, {noSpace(line)});
  }
  for (const std::string line : {"NAME\n", "NAME \t \n", "NAME ", "NAME # x\n", "NAME #\n"}) {
    expectNothing(line, {noValue(line)});
    expectNothing("  " + line, {noValue(line)});
  }
}

TEST_F(ConfigFile, ABadLineIsSkippedAndTheTableIsSortedAtTheEnd) {
  EXPECT_EQ(readText("B 1\nB=2\nC\nE 2\n# D 4\nA 5\nB 3\nB=4\nB"), 0);
  EXPECT_EQ(table->sorted, 1);
  EXPECT_EQ(definitions(), (Definitions{{"A", "5"}, {"B", "3"}, {"E", "2"}}));
  EXPECT_EQ(LogRecorder::take(),
            (Log{noSpace("B=2\n"), noValue("C\n"), noSpace("B=4\n"), noSpace("B")}));
}

TEST_F(ConfigFile, AnEmptyFileTakesTwentySlotsAndTwentyFiveDefinitionsForty) {
  EXPECT_EQ(readText(""), 0);
  EXPECT_EQ(table->count, 0U);
  EXPECT_EQ(table->capacity, 20U);

  std::string text;
  for (int i = 0; i < 25; ++i) {
    text += "NAME_" + std::to_string(i) + " value_" + std::to_string(i) + "\n";
  }
  EXPECT_EQ(readText(text), 0);
  EXPECT_EQ(table->count, 25U);
  EXPECT_EQ(table->capacity, 40U);
  for (int i = 0; i < 25; ++i) {
    EXPECT_EQ(findConfigEntry(table.get(), ("NAME_" + std::to_string(i)).c_str()),
              "value_" + std::to_string(i));
  }
}

TEST_F(ConfigFile, LinesOfAnyLengthAreRead) {
  const std::string long1(1000000, 'n');
  const std::string long2(1000000, 'v');
  EXPECT_EQ(readText(long1 + " " + long2 + "\nB 2\n#" + long1 + "\n" + long2), 0);
  EXPECT_EQ(definitions(), (Definitions{{"B", "2"}, {long1, long2}}));
  EXPECT_EQ(LogRecorder::take(), (Log{noSpace(long2)}));
}

TEST_F(ConfigFile, ALineEndsAtANulByte) {
  using namespace std::string_literals;
  expectDefinition("NAME value\0 more\n"s, "NAME", "value");
  expectDefinition("NAME value \0 more\n"s, "NAME", "value");
  expectNothing("\0NAME value\n"s, {});
  expectNothing("NAME\0 value\n"s, {noSpace("NAME")});
  expectNothing("NAME \0value\n"s, {noValue("NAME ")});
  EXPECT_EQ(readText("A 1\0\nB 2\n\0\0\0\n\0"s), 0);
  EXPECT_EQ(definitions(), (Definitions{{"A", "1"}, {"B", "2"}}));
}

TEST_F(ConfigFile, AnyByteIsAcceptedAnywhere) {
  for (int byte = 0; byte < 256; ++byte) {
    std::string text =
        "@\n@NAME value\nNA@ME value\nNAME@value\nNAME @value\nNAME val@ue\nNAME value@\nLAST 1\n";
    std::replace(text.begin(), text.end(), '@', static_cast<char>(byte));
    EXPECT_EQ(readText(text), 0);
    EXPECT_STREQ(findConfigEntry(table.get(), "LAST"), "1") << "with byte " << byte;
  }
}

TEST_F(ConfigFile, AFileCutAtAnyLengthIsRead) {
  const std::string text = "# c\nNAME value\n\n  B  two words  # c\nC=3\nD\nE 5 \n";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    EXPECT_EQ(readText(text.substr(0, length)), 0) << "at length " << length;
    const bool isWhole = length >= text.find("\n\n");
    EXPECT_EQ(!definitions().empty() && definitions().back().second == "value", isWhole);
  }
}

TEST_F(ConfigFile, AFileThatCannotBeOpenedFailsWithItsErrno) {
  writeFile(directory / "file", "");
  std::filesystem::create_symlink("loop", directory / "loop");
  struct Row {
    std::string path;
    int error;
    std::string reason;
  };
  const std::vector<Row> rows{{directory / "missing", ENOENT, "No such file or directory"},
                              {directory / "file/below", ENOTDIR, "Not a directory"},
                              {directory / "loop", ELOOP, "Too many levels of symbolic links"}};
  for (const auto& [path, error, reason] : rows) {
    EXPECT_EQ(readPath(path), -1);
    EXPECT_EQ(errno, error);
    EXPECT_EQ(LogRecorder::take(), (Log{cannotOpen(path, reason)}));
    EXPECT_EQ(table->capacity, 20U);  // the slots were allocated first
  }
}

TEST_F(ConfigFile, AFileThatCannotBeReadToItsEndFails) {
  EXPECT_EQ(readPath(directory.path()), -1);
  EXPECT_EQ(errno, EISDIR);
  EXPECT_EQ(LogRecorder::take(), (Log{{12, "Unable to read configuration file: Is a directory"}}));

  EXPECT_EQ(readPath("/proc/self/mem"), -1);
  EXPECT_EQ(errno, EIO);
  EXPECT_EQ(LogRecorder::take(),
            (Log{{12, "Unable to read configuration file: Input/output error"}}));
}

// A signal interrupts the read of a FIFO after a partial line. Logging that line changes errno.
TEST_F(ConfigFile, AReadErrorKeepsItsErrnoWhenAPartialLineIsLogged) {
  const std::string fifo = directory / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const int writer = open(fifo.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(write(writer, "A 1\nB=2", 7), 7);
  struct sigaction interrupt {};
  interrupt.sa_handler = [](int /*signal*/) {};
  struct sigaction before {};
  sigaction(SIGALRM, &interrupt, &before);
  constexpr itimerval every10Milliseconds{{0, 10000}, {0, 10000}};
  constexpr itimerval never{};
  setitimer(ITIMER_REAL, &every10Milliseconds, nullptr);
  const int result = readPath(fifo);
  const int error = errno;
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &before, nullptr);
  close(writer);

  EXPECT_EQ(result, -1);
  EXPECT_EQ(error, EINTR);
  EXPECT_EQ(definitions(), (Definitions{{"A", "1"}}));
  EXPECT_EQ(
      LogRecorder::take(),
      (Log{noSpace("B=2"), {12, "Unable to read configuration file: Interrupted system call"}}));
}

TEST_F(ConfigFile, AFailedCloseKeepsTheErrnoOfTheFirstFailure) {
  const FailingCall failing(Call::Fclose, ENOSPC);
  EXPECT_EQ(readPath(directory.path()), -1);
  EXPECT_EQ(errno, EISDIR);
}

TEST_F(ConfigFile, AFailedReadSortsTheTableAndAFailedStoreDoesNot) {
  writeFile(directory / "kel.conf", "B 1\nA 2\nC 3\n");
  {
    const FailingAllocations failing(9);  // after table, slots, line, two copies, line, two copies
    EXPECT_EQ(readPath(directory / "kel.conf"), -1);
    EXPECT_EQ(table->sorted, 1);
    EXPECT_EQ(definitions(), (Definitions{{"A", "2"}, {"B", "1"}}));
  }
  const FailingAllocations failing(10);  // the next one, a copy of the third name
  EXPECT_EQ(readPath(directory / "kel.conf"), -1);
  EXPECT_EQ(table->sorted, 0);
  EXPECT_EQ(definitions(), (Definitions{{"B", "1"}, {"A", "2"}}));
}

TEST_F(ConfigFile, EveryFailedAllocationFailsTheReading) {
  std::string text;
  for (int i = 0; i < 21; ++i) text += "NAME_" + std::to_string(i) + " value\n";
  EXPECT_EQ(readText(text), 0);
  const Definitions all = definitions();

  const std::string outOf = ": Cannot allocate memory";
  int failures = 0;
  for (int nth = 2;; ++nth) {
    const FailingAllocations failing(nth);  // the first one makes the table itself
    if (readPath(directory / "kel.conf") == 0) break;
    ++failures;
    EXPECT_EQ(errno, ENOMEM);
    const Log log = LogRecorder::take();
    if (nth == 2) {
      EXPECT_EQ(log, Log{});
    } else {
      ASSERT_EQ(log.size(), 1U) << "at allocation " << nth;
      EXPECT_EQ(log[0].priority, 12);
      EXPECT_NE(log[0].text.find(outOf), std::string::npos) << log[0].text;
    }
    EXPECT_LE(definitions().size(), all.size());
  }
  EXPECT_EQ(failures, 1 + 22 + 2 * 21 + 1);  // slots, lines and end of file, copies, more slots
  EXPECT_EQ(definitions(), all);
}

TEST_F(ConfigFile, EveryDescriptorIsClosed) {
  const std::size_t before = openDescriptors();
  readText("A 1\n");
  readPath(directory / "missing");
  readPath(directory.path());
  {
    const FailingAllocations failing(5);
    EXPECT_EQ(readPath(directory / "kel.conf"), -1);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ConfigFile, ReadingAddsToTheTable) {
  EXPECT_EQ(readText("A 1\nB 2\n"), 0);
  writeFile(directory / "second", "C 3\nA 4\n");
  EXPECT_EQ(readConfigFile((directory / "second").c_str(), table.get()), 0);
  EXPECT_EQ(definitions(), (Definitions{{"A", "4"}, {"B", "2"}, {"C", "3"}}));
}

TEST(ConfigFileLog, IsSilentWithTheDefaultSettings) {
  const TemporaryDirectory directory;
  writeFile(directory / "kel.conf", "NAME=value\nNAME\n");
  EXPECT_EQ(runInChild([&] {
              RuntimeConfiguration table{};
              readConfigFile((directory / "missing").c_str(), &table);
              readConfigFile(directory.path().c_str(), &table);
              readConfigFile((directory / "kel.conf").c_str(), &table);
              std::free(table.entries);
            }),
            (Outcome{0, 0, "", ""}));
}

}  // namespace
}  // namespace addrtool::testing
