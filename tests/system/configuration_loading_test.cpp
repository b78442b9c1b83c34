// What /etc/kel/kel.conf means to a run of the program: it is read, and nothing comes of it.
#include <sys/stat.h>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const fs::path config = "/etc/kel/kel.conf";

Outcome list() {
  return runCommand({"addrtool", "-l"});
}

// A sandbox without the file.
struct ConfigurationLoading : ::testing::Test {
  void SetUp() override {
    fs::remove_all(config.parent_path());
    fs::create_directory(config.parent_path());
    withoutFile = list();
    ASSERT_EQ(withoutFile,
              (Outcome{0, 0, "192.0.2.1 255.255.255.0 eth0 1\n2001:db8::1 64 eth0 0\n", ""}));
  }

  void TearDown() override { fs::remove_all(config.parent_path()); }

  void expectNothingChangesWith(const std::string& contents) const {
    writeFile(config, contents);
    EXPECT_EQ(list(), withoutFile);
  }

  Outcome withoutFile;
};

std::string manyDefinitions(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "NAME_" + std::to_string(i) + " value\n";
  return text;
}

TEST_F(ConfigurationLoading, AnUsualFileChangesNothing) {
  expectNothingChangesWith("");
  expectNothingChangesWith("# comment\n\nPRODUCT_ROOT_D /opt/kel\nNAME=value\nNAME\nDUMP_D /d # x");
  expectNothingChangesWith(manyDefinitions(25));
}

TEST_F(ConfigurationLoading, AnUnusualFileChangesNothing) {
  using namespace std::string_literals;
  expectNothingChangesWith(std::string(1000000, 'x'));
  expectNothingChangesWith("NAME " + std::string(1000000, 'x') + "\n");
  expectNothingChangesWith("NAME\0 value\n\0\0\nB \0\n"s);
  expectNothingChangesWith(readFile("/bin/sh"));
}

TEST_F(ConfigurationLoading, AHugeFileChangesNothing) {
  expectNothingChangesWith(manyDefinitions(10000));
  expectNothingChangesWith(std::string(5000000, '\n'));

  // Of few names: each one is looked for among all those that came before.
  std::string repeated;
  for (int i = 0; i < 4000; ++i) repeated += manyDefinitions(25);
  expectNothingChangesWith(repeated);
}

TEST_F(ConfigurationLoading, WhatCannotBeReadChangesNothing) {
  fs::create_directory(config);
  EXPECT_EQ(list(), withoutFile);
  fs::remove(config);
  fs::create_symlink("kel.conf", config);
  EXPECT_EQ(list(), withoutFile);
  fs::remove(config);
  fs::create_symlink("/proc/self/mem", config);
  EXPECT_EQ(list(), withoutFile);
  fs::remove(config);
  fs::remove(config.parent_path());
  EXPECT_EQ(list(), withoutFile);
}

// A pipe that nobody writes to holds the program where it opens the file.
TEST_F(ConfigurationLoading, ComesBehindTheChecksOfTheCommandLine) {
  ASSERT_EQ(mkfifo(config.c_str(), 0600), 0);
  EXPECT_EQ(runShell("timeout 20 addrtool -l extra").exitStatus, 1);
  EXPECT_EQ(runShell("timeout 20 addrtool").exitStatus, 2);
  EXPECT_EQ(runShell("timeout 20 addrtool -a eth0 192.0.2.5").exitStatus, 2);
}

TEST_F(ConfigurationLoading, ComesBeforeTheFirstAction) {
  ASSERT_EQ(mkfifo(config.c_str(), 0600), 0);
  EXPECT_EQ(runShell("timeout 1 addrtool -l -h"), (Outcome{124, 0, "", ""}));
}

TEST_F(ConfigurationLoading, HappensOnce) {
  ASSERT_EQ(mkfifo(config.c_str(), 0600), 0);
  EXPECT_EQ(runShell("echo NAME value >/etc/kel/kel.conf & timeout 20 addrtool -l -l"),
            (Outcome{0, 0, withoutFile.out + withoutFile.out, ""}));
}

}  // namespace
}  // namespace addrtool::testing
