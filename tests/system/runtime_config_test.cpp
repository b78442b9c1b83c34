// The program loads /etc/kel/kel.conf and uses no value.
#include <sys/stat.h>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const fs::path kelConf = "/etc/kel/kel.conf";

struct ConfigurationLoading : ::testing::Test {
  void SetUp() override { fs::create_directories(kelConf.parent_path()); }
};

std::string manyDefinitions(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "NAME_" + std::to_string(i) + " value\n";
  return text;
}

TEST_F(ConfigurationLoading, DoesNotDependOnTheContents) {
  using namespace std::string_literals;
  std::string repeated;
  for (int i = 0; i < 400; ++i) repeated += manyDefinitions(25);
  for (const std::string& contents :
       {""s, "# comment\n\nPRODUCT_ROOT_D /opt/kel\nNAME=value\nNAME\nDUMP_D /d # x"s,
        manyDefinitions(25), std::string(1000000, 'x'), "NAME " + std::string(1000000, 'x') + "\n",
        "NAME\0 value\n\0\0\nB \0\n"s, readFile("/bin/sh"), manyDefinitions(3000),
        std::string(1000000, '\n'), repeated}) {
    writeFile(kelConf, contents);
    EXPECT_EQ(runAddrtool({"-l"}), success(freshListing)) << contents.substr(0, 100);
  }
}

TEST_F(ConfigurationLoading, AFileThatCannotBeReadChangesNothing) {
  for (const std::string command : {"mkdir kel.conf", "ln -s kel.conf kel.conf",
                                    "ln -s /proc/self/mem kel.conf", "rmdir /etc/kel"}) {
    prepare("cd /etc/kel; rm -rf kel.conf; " + command);
    EXPECT_EQ(runAddrtool({"-l"}), success(freshListing)) << command;
  }
}

// Opening a FIFO without a writer blocks the program.
TEST_F(ConfigurationLoading, ComesBetweenTheChecksOfTheCommandLineAndTheFirstAction) {
  ASSERT_EQ(mkfifo(kelConf.c_str(), 0600), 0);
  EXPECT_EQ(runShell("timeout 20 addrtool -l extra").exitStatus, 1);
  EXPECT_EQ(runShell("timeout 20 addrtool").exitStatus, 2);
  EXPECT_EQ(runShell("timeout 20 addrtool -a eth0 192.0.2.5").exitStatus, 2);
  EXPECT_EQ(runShell("timeout 1 addrtool -l -h"), (Outcome{124, 0, "", ""}));
}

TEST_F(ConfigurationLoading, HappensOnceForEveryAction) {
  const Lines options{"-P" + kelConf.string(), "trace=?open,openat", "signal=none"};
  const std::vector<std::pair<Lines, int>> rows{
      {{"addrtool", "-l", "-l"}, 0},
      {{"addrtool", "-h"}, 2},
      {{"addrtool", "-d", "192.0.2.1"}, 1},
      {{"addrtool", "-v", "10.0.0.1"}, 0},
      {{"addrtool", "-a", "eth0", "192.0.2.10", "255.255.255.0"}, 0},
  };
  for (const auto& [command, status] : rows) {
    const auto [outcome, calls] = traceCommand(options, command);
    EXPECT_EQ(outcome.exitStatus, status) << command[1];
    EXPECT_EQ(calls.size(), 1U) << command[1];
  }
}

}  // namespace
}  // namespace addrtool::testing
