#include "runtime/messages.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <tuple>
#include <utility>

#include "runtime/logging.h"
#include "support/child_process.h"
#include "support/failing_call.h"

namespace addrtool::testing {
namespace {

const std::string permissionSuffix = "\nSystem error 13: Permission denied";

// What a child process prints when it reports the text while errno is `error`.
Outcome report(int error, const std::string& text, int status = 0) {
  return runInChild([&] {
    errno = error;
    reportMessage(status, 1, "%s", text.c_str());
    FailingCall::end();  // the coverage counters allocate when the process ends
  });
}

TEST(PrintMessage, EndsAMessageWithOneNewline) {
  const char* const emptyAfterNewline = &"\n"[1];  // the byte before the text must not be read
  const std::map<const char*, const char*> table{
      {"text", "text\n"}, {"text\n", "text\n"}, {"two\nlines", "two\nlines\n"}, {"a\n\n", "a\n\n"},
      {"\n", "\n"},       {"%s %n", "%s %n\n"}, {emptyAfterNewline, "\n"}};
  for (const auto& [message, printed] : table) {
    SCOPED_TRACE(message);
    expectInChild(onBothStreams(printed), [text = message] { printMessage(text, 0, 1); });
  }
}

TEST(PrintMessage, ANonZeroStatusEndsTheProcessWhateverTheFlag) {
  for (const int flag : {0, 1, -1}) {
    expectInChild(onBothStreams("text\n", 7),
                  [=] { std::exit(printMessage("text", 0, flag) == 0 ? 7 : 8); });
    for (const int status : {1, 3, 255, 256, -1}) {
      expectInChild({status & 0xff, 0, "text\nhandler\n", "text\n"}, [=] {
        std::atexit([] { std::puts("handler"); });
        printMessage("text", status, flag);
        std::puts("went on");
      });
    }
  }
}

TEST(PrintMessage, BeginsWithTheLastComponentOfTheProgramName) {
  EXPECT_EQ(messageProgramName, nullptr) << "at start";
  const auto expectPrinted = [](const char* name, const char* text) {
    SCOPED_TRACE(name);
    expectInChild(onBothStreams(text), [=] {
      messageProgramName = name;
      printMessage("text", 0, 1);
    });
  };
  for (const auto* name : {"/usr/local/bin/addrtool", "bin/addrtool", "addrtool", "/addrtool"}) {
    expectPrinted(name, "addrtool: text\n");
  }
  for (const auto* name : {"bin/", "/", ""}) expectPrinted(name, "text\n");
}

// Messages and the log, whatever logEnabled says.
std::map<std::string, std::function<void()>> printers() {
  return {{"message", [] { printMessage("text", 0, 1); }},
          {"enabled log", [] { logMessage(3, "text"); }},
          {"disabled log", [] {
             logEnabled = 0;
             logMessage(3, "text");
           }}};
}

TEST(MessagesAndLog, FlushBothStreams) {
  for (const auto& [name, print] : printers()) {
    SCOPED_TRACE(name);
    expectInChild(onBothStreams("text\n"), [&function = print] {
      std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
      function();
      _exit(0);
    });
  }
}

// Each write to standard output ends the child, so only what was flushed before comes out.
TEST(MessagesAndLog, FlushStandardErrorBeforeStandardOutput) {
  for (const auto& [name, print] : printers()) {
    const Outcome outcome = runInChild([&function = print] {
      std::array<int, 2> ends{};
      if (pipe(ends.data()) != 0) _exit(1);
      dup2(ends[1], STDOUT_FILENO);
      close(ends[0]);
      std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
      std::setvbuf(stdout, nullptr, _IONBF, 0);
      function();
    });
    EXPECT_EQ(outcome, (Outcome{-1, SIGPIPE, "", "text\n"})) << name;
  }
}

TEST(MessagesAndLog, UseStandardOutputEvenIfStandardErrorFails) {
  for (const auto& [name, print] : printers()) {
    SCOPED_TRACE(name);
    expectInChild(success("text\n"), [&function = print] {
      close(STDERR_FILENO);
      function();
    });
  }
}

TEST(ReportMessage, FormatsAndReturnsForStatusZero) {
  expectInChild(onBothStreams("eth0 has 3 of  1.50%\n", 9), [] {
    errno = 0;
    reportMessage(0, 1, "%s has %d of %5.2f%%", "eth0", 3, 1.5);
    std::exit(9);
  });
}

TEST(ReportMessage, AddsTheSystemErrorInErrnoOnALineOfItsOwn) {
  const std::vector<std::tuple<int, std::string, std::string>> table{
      {0, "text", "text"},
      {2, "text", "text\nSystem error 2: No such file or directory"},
      {13, "text\n", "text\n" + permissionSuffix},
      {13, "", permissionSuffix},
      {-1, "text", "text\nSystem error -1: Unknown error -1"}};
  for (const auto& [error, text, printed] : table) {
    for (const int status : {0, 3}) {
      EXPECT_EQ(report(error, text, status), onBothStreams(printed + '\n', status));
    }
  }
}

TEST(ReportMessage, PrintsATextOfAnyLengthAndASystemErrorThatFitsTheBuffer) {
  const std::size_t longest = 4095 - permissionSuffix.size();
  for (const std::size_t length :
       std::vector<std::size_t>{0, longest - 1, longest, longest + 1, longest + 2, 4094, 4095, 4096,
                                4097, 5000, 100000}) {
    const std::string text(length, 'x');
    EXPECT_EQ(report(0, text), onBothStreams(text + "\n")) << "for length " << length;
    EXPECT_EQ(report(13, text),
              onBothStreams(text + (length <= longest ? permissionSuffix : "") + "\n"))
        << "for length " << length;
  }
}

TEST(ReportMessage, TruncatesWhatDoesNotFitIfTheBufferCannotGrow) {
  for (const std::size_t length : {4070U, 4090U, 4094U, 4095U, 4096U, 4097U, 5000U}) {
    const std::string text(length, 'x');
    for (const int last : {2, 3}) {
      const FailingAllocations failing(2, last);
      EXPECT_EQ(report(0, text), onBothStreams(text.substr(0, 4095) + '\n'));
      EXPECT_EQ(report(13, text),
                onBothStreams((text + permissionSuffix).substr(0, 4095) +
                              (length == 4094 ? "" : "\n")))  // truncated after its own newline
          << "for length " << length;
    }
  }
  const FailingAllocations failing(3);  // the text fits after growing, its suffix does not
  EXPECT_EQ(report(13, std::string(4096, 'x')), onBothStreams(std::string(4096, 'x') + '\n'));
}

TEST(ReportMessage, OutOfMemoryPrintsAFixedText) {
  const std::string text = "Can't allocate memory for error message\n";
  for (const int status : {0, 5}) {
    expectInChild(onBothStreams(text, status == 0 ? 9 : status), [=] {
      const FailingAllocations failing(1);
      errno = 13;
      reportMessage(status, 1, "text");
      std::exit(9);
    });
  }
}

TEST(ReportMessage, FormattingDoesNotChangeErrno) {
  // The C locale cannot encode this character, so formatting fails and sets errno to EILSEQ.
  for (const int error : {0, 13}) {
    expectInChild(onBothStreams((error == 0 ? "" : permissionSuffix) + "\n", error), [=] {
      errno = error;
      reportMessage(0, 1, "text %ls", L"\x4e00");
      std::exit(errno);
    });
  }
}

TEST(CheckLeftoverArguments, AnyOperandLeftEndsTheProgram) {
  const auto expectPrinted = [](const std::string& text, int status, int argc, int error) {
    expectInChild(onBothStreams(text, status), [=] {
      errno = error;
      checkLeftoverArguments(argc, 2, nullptr);
      std::exit(9);
    });
  };
  const std::string text =
      "Some parameters in command string are left unprocessed. Check parameters please.\n";
  expectPrinted("", 9, 2, 0);
  for (const int argc : {3, 4, 1}) expectPrinted(text, 1, argc, 0);
  expectPrinted(text + "System error 2: No such file or directory\n", 1, 3, 2);
}

TEST(CheckRequiredParameter, APresentOneWithoutAValueEndsTheProgram) {
  const Outcome missing =
      onBothStreams("Missing parameter '--add' or previous parameter is empty.\n", 1);
  for (const int present : {0, 1, 2, -1}) {
    for (const char* const value : {static_cast<const char*>(nullptr), "", " ", "eth0"}) {
      const bool isMissing = present != 0 && (value == nullptr || *value == '\0');
      expectInChild(isMissing ? missing : onBothStreams("", 9), [=] {
        errno = 0;
        checkRequiredParameter(present, value, "--add");
        std::exit(9);
      });
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
  const std::string noMemory = "\nSystem error 12: Cannot allocate memory\n";
  for (const auto& [size, printed] :
       {std::pair(640U, "alloc(640)"), {3000000000U, "alloc(-1294967296)"}}) {
    expectInChild(onBothStreams(printed + noMemory, 1), [refused = size] {
      const FailingAllocations failing(1);
      reallocOrDie(nullptr, refused);
    });
  }
}

TEST(ReallocOrDie, SizeZeroFreesTheMemoryAndCountsAsAFailure) {
  expectInChild(onBothStreams("alloc(0)\n", 1), [] {
    void* const memory = std::malloc(1);
    errno = 0;
    reallocOrDie(memory, 0);
  });
}

}  // namespace
}  // namespace addrtool::testing
