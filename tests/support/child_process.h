// Runs a program, or a function in a forked child, with both output streams captured separately.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace addrtool::testing {

/// How a child ended and what it wrote.
struct Outcome {
  int exitStatus = -1;  ///< -1 when it was ended by a signal
  int signal = 0;       ///< 0 when it ended by itself
  std::string out;
  std::string err;

  bool operator==(const Outcome&) const = default;
};

/// Exit status 0 and no output.
inline const Outcome silentSuccess{0, 0, "", ""};

/// For readable failures.
void PrintTo(const Outcome& outcome, std::ostream* stream);

/// Runs the command (found on the PATH) to its end, without standard input.
Outcome runCommand(const std::vector<std::string>& command);

/// Runs `sh -c script`; for what is shorter said in shell.
Outcome runShell(const std::string& script);

/// Calls the function in a forked child, which then leaves through exit(0) unless the function
/// ended it before. Streams are flushed as at any normal end.
Outcome runInChild(const std::function<void()>& function);

}  // namespace addrtool::testing
