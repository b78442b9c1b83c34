// Changes the addresses of the sandbox.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/child_process.h"
#include "support/files.h"

namespace addrtool::testing {

/// Runs the lines as commands of ip(8); each must succeed.
inline void ip(const std::string& commands) {
  const TemporaryDirectory directory;
  writeFile(directory / "batch", commands + '\n');
  const Outcome outcome = runCommand({"ip", "-batch", directory / "batch"});
  ASSERT_EQ(outcome.exitStatus, 0) << outcome.err << "\nafter: " << commands;
}

}  // namespace addrtool::testing
