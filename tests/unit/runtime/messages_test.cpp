#include "runtime/messages.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"
#include "support/failing_call.h"

namespace addrtool::testing {
namespace {

const std::string permissionSuffix = "\nSystem error 13: Permission denied";

// What a child process prints when it reports the text while errno is `error`.
Outcome reportWithErrno(int error, const std::string& text, int status = 0) {
  return runInChild([&] {
    errno = error;
    reportMessage(status, 1, "%s", text.c_str());
  });
}

// The same, with the allocations `first` to `last` failing.
Outcome reportShortOfMemory(int error, const std::string& text, int first, int last) {
  return runInChild([&] {
    const FailingAllocations failing(first, last);
    errno = error;
    reportMessage(0, 1, "%s", text.c_str());
  });
}

TEST(PrintMessage, EndsAMessageWithOneNewline) {
  const std::vector<std::pair<const char*, const char*>> table{
      {"text", "text\n"}, {"text\n", "text\n"}, {"two\nlines", "two\nlines\n"},
      {"a\n\n", "a\n\n"}, {"\n", "\n"},         {"%s %n", "%s %n\n"}};
  for (const auto& [message, printed] : table) {
    EXPECT_EQ(runInChild([text = message] { printMessage(text, 0, 1); }), onBothStreams(printed))
        << "for \"" << message << '"';
  }
}

TEST(PrintMessage, AnEmptyMessageIsALoneNewline) {
  // The byte before the empty text is a newline. It must not be read.
  const std::array<char, 2> text{'\n', '\0'};
  EXPECT_EQ(runInChild([&] { printMessage(&text[1], 0, 1); }), onBothStreams("\n"));
}

TEST(PrintMessage, ANonZeroStatusEndsTheProcessWhateverTheFlag) {
  for (const int flag : {0, 1, -1}) {
    EXPECT_EQ(runInChild([&] { std::exit(printMessage("text", 0, flag) == 0 ? 7 : 8); }),
              onBothStreams("text\n", 7));
    for (const int status : {1, 3, 255, 256, -1}) {
      EXPECT_EQ(runInChild([&] {
                  std::atexit([] { std::puts("handler"); });
                  printMessage("text", status, flag);
                  std::puts("went on");
                }),
                (Outcome{status & 0xff, 0, "text\nhandler\n", "text\n"}));
    }
  }
}

TEST(PrintMessage, BeginsWithTheLastComponentOfTheProgramName) {
  EXPECT_EQ(messageProgramName, nullptr) << "at start";
  const std::vector<std::pair<const char*, const char*>> table{
      {"/usr/local/bin/addrtool", "addrtool: text\n"},
      {"bin/addrtool", "addrtool: text\n"},
      {"addrtool", "addrtool: text\n"},
      {"/addrtool", "addrtool: text\n"},
      {"bin/", "text\n"},
      {"/", "text\n"},
      {"", "text\n"}};
  for (const auto& [name, printed] : table) {
    EXPECT_EQ(runInChild([programName = name] {
                messageProgramName = programName;
                printMessage("text", 0, 1);
              }),
              onBothStreams(printed))
        << "for \"" << name << '"';
  }
}

TEST(PrintMessage, FlushesBothStreams) {
  EXPECT_EQ(runInChild([] {
              std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
              printMessage("text", 0, 1);
              _exit(0);
            }),
            onBothStreams("text\n"));
}

TEST(PrintMessage, StandardErrorComesFirst) {
  EXPECT_EQ(runWithBrokenOutput([] { printMessage("text", 0, 1); }),
            (Outcome{-1, SIGPIPE, "", "text\n"}));
}

TEST(PrintMessage, AFailingStandardErrorLeavesStandardOutput) {
  EXPECT_EQ(runInChild([] {
              close(STDERR_FILENO);
              printMessage("text", 0, 1);
            }),
            (Outcome{0, 0, "text\n", ""}));
}

TEST(ReportMessage, FormatsAndReturnsForStatusZero) {
  EXPECT_EQ(runInChild([] {
              errno = 0;
              reportMessage(0, 1, "%s has %d of %5.2f%%", "eth0", 3, 1.5);
              std::exit(9);
            }),
            onBothStreams("eth0 has 3 of  1.50%\n", 9));
}

TEST(ReportMessage, AddsTheSystemErrorInErrnoOnALineOfItsOwn) {
  struct Row {
    int error;
    std::string text;
    std::string printed;
  };
  const std::vector<Row> table{{0, "text", "text\n"},
                               {2, "text", "text\nSystem error 2: No such file or directory\n"},
                               {13, "text", "text" + permissionSuffix + "\n"},
                               {13, "text\n", "text\n" + permissionSuffix + "\n"},
                               {13, "", permissionSuffix + "\n"},
                               {9999, "text", "text\nSystem error 9999: Unknown error 9999\n"},
                               {-1, "text", "text\nSystem error -1: Unknown error -1\n"}};
  for (const auto& [error, text, printed] : table) {
    for (const int status : {0, 3}) {
      EXPECT_EQ(reportWithErrno(error, text, status), onBothStreams(printed, status))
          << "for errno " << error;
    }
  }
}

TEST(ReportMessage, TextsOfAnyLengthArePrinted) {
  for (const std::size_t length : {0U, 1U, 4094U, 4095U, 4096U, 4097U, 5000U, 1000000U}) {
    const std::string text(length, 'x');
    EXPECT_EQ(reportWithErrno(0, text), onBothStreams(text + "\n")) << "for length " << length;
  }
}

TEST(ReportMessage, OnlyASystemErrorThatFitsTheBufferIsPrinted) {
  const std::size_t last = 4095 - permissionSuffix.size();
  for (const std::size_t length : {last - 1, last}) {
    const std::string text(length, 'x');
    EXPECT_EQ(reportWithErrno(13, text), onBothStreams(text + permissionSuffix + "\n"))
        << "for length " << length;
  }
  for (const std::size_t length :
       {last + 1, last + 2, std::size_t{4094}, std::size_t{4095}, std::size_t{4096},
        std::size_t{4097}, std::size_t{5000}, std::size_t{100000}}) {
    const std::string text(length, 'x');
    EXPECT_EQ(reportWithErrno(13, text), onBothStreams(text + "\n")) << "for length " << length;
  }
}

TEST(ReportMessage, ALongTextIsTruncatedIfTheBufferCannotGrow) {
  const std::string kept(4095, 'x');
  for (const std::size_t length : {4096U, 4097U, 5000U}) {
    const std::string text(length, 'x');
    EXPECT_EQ(reportShortOfMemory(0, text, 2, 2), onBothStreams(kept + "\n"));
    EXPECT_EQ(reportShortOfMemory(13, text, 2, 2), onBothStreams(kept + "\n"));
    EXPECT_EQ(reportShortOfMemory(13, text, 2, 3), onBothStreams(kept + "\n"));
  }
}

TEST(ReportMessage, TheSystemErrorIsTruncatedIfTheBufferCannotGrow) {
  for (const std::size_t length : {4070U, 4090U, 4094U, 4095U}) {
    const std::string text(length, 'x');
    EXPECT_EQ(reportShortOfMemory(13, text, 2, 2),
              onBothStreams(text + permissionSuffix.substr(0, 4095 - length) +
                            (length == 4094 ? "" : "\n")))  // truncated after its own newline
        << "for length " << length;
  }
  const std::string text(4096, 'x');
  EXPECT_EQ(reportShortOfMemory(13, text, 3, 3), onBothStreams(text + "\n"));
}

TEST(ReportMessage, OutOfMemoryPrintsAFixedText) {
  const std::string fixed = "Can't allocate memory for error message\n";
  for (const auto& [status, end] : {std::pair(0, 9), std::pair(5, 5)}) {
    EXPECT_EQ(runInChild([asked = status] {
                const FailingAllocations failing(1);
                errno = 13;
                reportMessage(asked, 1, "text");
                std::exit(9);
              }),
              onBothStreams(fixed, end));
  }
}

TEST(ReportMessage, FormattingDoesNotChangeErrno) {
  // The C locale cannot encode this character, so formatting fails and sets errno to EILSEQ.
  const auto reportUnprintable = [](int error) {
    return runInChild([&] {
      errno = error;
      reportMessage(0, 1, "text %ls", L"\x4e00");
      std::exit(errno);
    });
  };
  EXPECT_EQ(reportUnprintable(0), onBothStreams("\n"));
  EXPECT_EQ(reportUnprintable(13), onBothStreams(permissionSuffix + "\n", 13));
}

TEST(CheckLeftoverArguments, AnyOperandLeftEndsTheProgram) {
  const std::string text =
      "Some parameters in command string are left unprocessed. Check parameters please.\n";
  const auto check = [](int argc, int error) {
    return runInChild([=] {
      errno = error;
      checkLeftoverArguments(argc, 2, nullptr);
      std::exit(9);
    });
  };
  EXPECT_EQ(check(2, 0), (Outcome{9, 0, "", ""}));
  for (const int argc : {3, 4, 1}) EXPECT_EQ(check(argc, 0), onBothStreams(text, 1));
  EXPECT_EQ(check(3, 2), onBothStreams(text + "System error 2: No such file or directory\n", 1));
}

TEST(CheckRequiredParameter, APresentOneWithoutAValueEndsTheProgram) {
  const std::string text = "Missing parameter '--add' or previous parameter is empty.\n";
  for (const int present : {0, 1, 2, -1}) {
    for (const char* const value : {static_cast<const char*>(nullptr), "", "eth0"}) {
      const bool isMissing = present != 0 && (value == nullptr || *value == '\0');
      EXPECT_EQ(runInChild([&] {
                  errno = 0;
                  checkRequiredParameter(present, value, "--add");
                  std::exit(9);
                }),
                isMissing ? onBothStreams(text, 1) : (Outcome{9, 0, "", ""}));
    }
  }
}

TEST(ReallocOrDie, KeepsTheContents) {
  auto* text = static_cast<char*>(reallocOrDie(nullptr, 4));
  text[0] = 'a';
  text = static_cast<char*>(reallocOrDie(text, 100000));
  EXPECT_EQ(text[0], 'a');
  text[99999] = 'b';
  std::free(text);
}

TEST(ReallocOrDie, ReportsTheSizeAsAnIntAndExits) {
  for (const auto& [size, printed] : {std::pair(640U, "640"), {3000000000U, "-1294967296"}}) {
    EXPECT_EQ(
        runInChild([refused = size] {
          const FailingAllocations failing(1);
          reallocOrDie(nullptr, refused);
        }),
        onBothStreams(
            "alloc(" + std::string(printed) + ")\nSystem error 12: Cannot allocate memory\n", 1));
  }
}

TEST(ReallocOrDie, SizeZeroFreesTheMemoryAndCountsAsAFailure) {
  EXPECT_EQ(runInChild([] {
              void* const memory = std::malloc(1);
              errno = 0;
              reallocOrDie(memory, 0);
            }),
            onBothStreams("alloc(0)\n", 1));
}

}  // namespace
}  // namespace addrtool::testing
