#include "support/system_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <sstream>

#include "support/files.h"

namespace addrtool::testing {
namespace {

std::string hexadecimal(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    constexpr const char* digits = "0123456789abcdef";
    text += digits[static_cast<unsigned char>(byte) / 16];
    text += digits[static_cast<unsigned char>(byte) % 16];
  }
  return text;
}

}  // namespace

void skipUnderEmulator(const char* reason) {
  constexpr bool isEmulated = ADDRTOOL_EMULATED;
  if (!isEmulated) return;
  using ::testing::TestPartResult;
  [reason] { GTEST_SKIP() << "Cannot run under an emulator: " << reason; }();
  throw ::testing::AssertionException({TestPartResult::kSkip, __FILE__, __LINE__, reason});
}

Trace traceCommand(const std::vector<std::string>& options,
                   const std::vector<std::string>& command) {
  skipUnderEmulator("strace would show the emulator's system calls");
  const TemporaryDirectory directory;
  const std::string log = directory / "calls";
  // The leak sanitizer does not work in a traced program.
  std::vector<std::string> words{"strace", "-qq", "-o", log, "-E", "ASAN_OPTIONS=detect_leaks=0"};
  words.insert(words.end(), options.begin(), options.end());
  words.insert(words.end(), command.begin(), command.end());

  Trace trace{runCommand(words), {}};
  std::istringstream lines(readFile(log));
  for (std::string line; std::getline(lines, line);) trace.calls.push_back(line);
  return trace;
}

std::string answer(const std::string& systemCall, int n, const std::string& bytes) {
  const std::string poke = bytes.empty() ? "" : ":poke_exit=@arg2=" + hexadecimal(bytes);
  return "inject=" + systemCall + ":retval=" + std::to_string(bytes.size()) + poke +
         ":when=" + std::to_string(n);
}

std::vector<std::string> callsFrom(const std::string& start, const Trace& trace) {
  const auto first =
      std::find_if(trace.calls.begin(), trace.calls.end(),
                   [&start](const std::string& call) { return call.starts_with(start); });
  return {first, trace.calls.end()};
}

std::vector<std::string> callsStarting(const std::string& start,
                                       const std::vector<std::string>& calls) {
  std::vector<std::string> found;
  std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
               [&start](const std::string& call) { return call.starts_with(start); });
  return found;
}

}  // namespace addrtool::testing
