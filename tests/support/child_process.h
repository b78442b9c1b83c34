// Runs a function in a child process and captures both output streams separately.
// Provides GoogleTest.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

namespace addrtool::testing {

/// How a child ended and what it wrote.
struct Outcome {
  int exitStatus = -1;  ///< -1 when it was ended by a signal
  int signal = 0;       ///< 0 when it ended by itself
  std::string out;
  std::string err;

  bool operator==(const Outcome&) const = default;
};

/// Exit status 0 and this on standard output.
inline Outcome success(const std::string& out) {
  return {0, 0, out, ""};
}
inline const Outcome silentSuccess = success("");

/// The same text on both streams.
inline Outcome onBothStreams(const std::string& text, int status = 0) {
  return {status, 0, text, text};
}

void PrintTo(const Outcome& outcome, std::ostream* stream);

/// Calls the function in a child process, which then calls exit(0) if the function returns.
Outcome runInChild(const std::function<void()>& function);

/// Expects this outcome of the function in a child process.
inline void expectInChild(const Outcome& outcome, const std::function<void()>& function) {
  EXPECT_EQ(runInChild(function), outcome);
}

/// The message of the std::runtime_error that the function throws, or "" if it throws none.
inline std::string failureOf(const std::function<void()>& function) {
  try {
    function();
    return "";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

}  // namespace addrtool::testing
