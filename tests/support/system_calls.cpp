#include "support/system_calls.h"

#include <algorithm>
#include <sstream>

#include "support/files.h"

namespace addrtool::testing {
namespace {

auto findStart(const std::string& start, const Lines& calls) {
  return std::ranges::find_if(calls, [&](const auto& call) { return call.starts_with(start); });
}

}  // namespace

void skipUnderEmulator(const char* reason) {
  constexpr bool isEmulated = ADDRTOOL_EMULATED;
  if (!isEmulated) return;
  using ::testing::TestPartResult;
  [reason] { GTEST_SKIP() << "Cannot run under an emulator: " << reason; }();
  throw ::testing::AssertionException({TestPartResult::kSkip, __FILE__, __LINE__, reason});
}

Trace traceCommand(const Lines& options, const Lines& command) {
  skipUnderEmulator("strace would show the emulator's system calls");
  const TemporaryDirectory directory;
  const std::string log = directory / "calls";
  // The leak sanitizer does not work in a traced program.
  Lines words{"strace", "-qq", "-o", log, "-E", "ASAN_OPTIONS=detect_leaks=0"};
  for (const std::string& option : options) {
    if (!option.starts_with('-')) words.emplace_back("-e");
    words.push_back(option);
  }
  words.insert(words.end(), command.begin(), command.end());

  Trace trace{runCommand(words), {}};
  std::istringstream lines(readFile(log));
  for (std::string line; std::getline(lines, line);) trace.calls.push_back(line);
  return trace;
}

std::string answer(const std::string& systemCall, int n, const std::string& bytes) {
  std::string poke = bytes.empty() ? "" : ":poke_exit=@arg2=";
  for (const char byte : bytes) {
    constexpr const char* digits = "0123456789abcdef";
    poke += digits[static_cast<unsigned char>(byte) / 16];
    poke += digits[static_cast<unsigned char>(byte) % 16];
  }
  return "inject=" + systemCall + ":retval=" + std::to_string(bytes.size()) + poke +
         ":when=" + std::to_string(n);
}

Lines callsBefore(const std::string& start, const Lines& calls) {
  return {calls.begin(), findStart(start, calls)};
}

Lines callsFrom(const std::string& start, const Lines& calls) {
  return {findStart(start, calls), calls.end()};
}

Lines callsStarting(const std::string& start, const Lines& calls) {
  Lines found = calls;
  std::erase_if(found, [&](const std::string& call) { return !call.starts_with(start); });
  return found;
}

}  // namespace addrtool::testing
