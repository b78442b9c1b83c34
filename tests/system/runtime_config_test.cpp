// The library that reads /etc/kel/kel.conf, and the program, which loads the file and uses no
// value.
#include "runtime/runtime_config.h"

#include <malloc.h>
#include <sys/stat.h>

#include <cerrno>

#include "support/failing_call.h"
#include "support/log_recorder.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const fs::path kelConf = "/etc/kel/kel.conf";
constexpr const char* definesNothing = "# nothing\n";

// --- the library keeps what it loaded, so each case runs in a child process ----

// Runs the function with this file, or with none if it is null. An expectation that fails in the
// child process prints its message.
Outcome runWithFile(const char* contents, const std::function<void()>& function) {
  fs::create_directories(kelConf.parent_path());
  fs::remove(kelConf);
  if (contents != nullptr) writeFile(kelConf, contents);
  return runInChild(function);
}

// Expects that nothing is printed: all expectations in the function hold.
void expectWithFile(const char* contents, const std::function<void()>& expectations) {
  EXPECT_EQ(runWithFile(contents, expectations), silentSuccess);
}

// Expects one error from the function: on both streams, and for a log function.
void expectError(const std::string& message, const char* contents,
                 const std::function<void()>& function) {
  EXPECT_EQ(runWithFile(contents, function), onBothStreams(message));
  expectWithFile(contents, [&function] {
    const LogRecorder log;
    function();
    const auto logged = LogRecorder::take();
    ASSERT_EQ(logged.size(), 1U);
    EXPECT_EQ(logged[0].priority, 3);
  });
}

TEST(LoadRuntimeConfiguration, ReadsTheFileOnce) {
  expectWithFile("NAME first\n", [] {
    EXPECT_EQ(loadRuntimeConfiguration(), 0);
    writeFile(kelConf, "NAME second\n");
    EXPECT_EQ(loadRuntimeConfiguration(), 0);
    EXPECT_STREQ(lookupConfigFile("NAME"), "first");
    fs::remove(kelConf);
    EXPECT_EQ(loadRuntimeConfiguration(), 0);
  });
}

TEST(LoadRuntimeConfiguration, AMissingFileFailsSilentlyAndLeaksNothing) {
  expectWithFile(nullptr, [] {
    fs::remove(kelConf.parent_path());
    EXPECT_EQ(loadRuntimeConfiguration(), -1);
    EXPECT_EQ(errno, ENOENT);
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i) static_cast<void>(loadRuntimeConfiguration());
    EXPECT_LT(mallinfo2().uordblks - before, 20000U);
  });
}

TEST(LoadRuntimeConfiguration, NothingIsKeptAfterAFailure) {
  expectWithFile(nullptr, [] {
    EXPECT_EQ(loadRuntimeConfiguration(), -1);
    fs::create_directory(kelConf);
    EXPECT_EQ(loadRuntimeConfiguration(), -1);
    EXPECT_EQ(lookupConfigFile("NAME"), nullptr);
    fs::remove(kelConf);
    writeFile(kelConf, "NAME value\n");
    EXPECT_STREQ(lookupConfigFile("NAME"), "value");
  });
}

TEST(LoadRuntimeConfiguration, OutOfMemoryForTheStructureIsLogged) {
  expectError("Not enough memory to allocate Vexa runtime configuration structure\n",
              definesNothing, [] {
                const FailingAllocations failing(1);
                EXPECT_EQ(loadRuntimeConfiguration(), -1);
                EXPECT_EQ(loadRuntimeConfiguration(), 0);
              });
}

TEST(LoadRuntimeConfiguration, OutOfMemoryForTheTableFails) {
  for (const int nth : {2, 3, 4, 5, 6}) {
    SCOPED_TRACE("allocation " + std::to_string(nth));
    expectWithFile("NAME value\n", [nth] {
      {
        const FailingAllocations failing(nth);
        EXPECT_EQ(loadRuntimeConfiguration(), -1);
      }
      EXPECT_STREQ(lookupConfigFile("NAME"), "value");
    });
  }
}

TEST(LookupConfigFile, LoadsTheFileAndFindsTheName) {
  expectWithFile("B 1\nNAME value\nA 2\nB 3\n", [] {
    EXPECT_STREQ(lookupConfigFile("NAME"), "value");
    EXPECT_STREQ(lookupConfigFile("B"), "3");
    EXPECT_EQ(lookupConfigFile("C"), nullptr);
    EXPECT_EQ(lookupConfigFile("DUMP_D"), nullptr);
  });
}

TEST(ConfigValues, ComeFromTheFileOrElseAreTheDefault) {
  std::string everything;
  for (const auto& [name, unused] : configVariables) {
    everything += std::string(name) + " value of " + name + '\n';
  }
  const char* const none = nullptr;
  for (const char* const contents : {everything.c_str(), definesNothing, none}) {
    expectWithFile(contents, [&everything, contents] {
      const bool isDefined = contents == everything.c_str();
      for (std::size_t i = 0; i < configVariables.size(); ++i) {
        const auto variable = static_cast<ConfigVariable>(i);
        const auto& [name, defaultValue] = configVariables.at(i);
        const std::string value = isDefined ? "value of " + std::string(name) : defaultValue;
        EXPECT_STREQ(getConfigValue(variable), isDefined ? value.c_str() : nullptr);
        EXPECT_STREQ(getConfigValueOrDefault(variable), value.c_str());
        if (variable == ConfigVariable::MAX_POSSIBLE_KEL_CONF_VAR) break;  // has no name to look up
        EXPECT_STREQ(getConfigValueByName(name), value.c_str());
      }
    });
  }
}

TEST(GetConfigValue, CachesAFoundValueButNoMissingOne) {
  expectWithFile(nullptr, [] {
    EXPECT_EQ(getConfigValue(ConfigVariable::DUMP_D), nullptr);
    writeFile(kelConf, "DUMP_D /elsewhere\n");
    const char* const value = getConfigValue(ConfigVariable::DUMP_D);
    EXPECT_STREQ(value, "/elsewhere");
    EXPECT_EQ(value, getConfigValue(ConfigVariable::DUMP_D));
    EXPECT_EQ(getConfigValue(ConfigVariable::DUMP_TMP_D), nullptr);
  });
}

TEST(GetConfigValue, IsNullOutsideTheTable) {
  for (const unsigned index : {30U, 31U, 255U}) {
    expectWithFile("NAME value\n", [index] {
      EXPECT_EQ(getConfigValue(static_cast<ConfigVariable>(index)), nullptr);
      EXPECT_EQ(getConfigValueOrDefault(static_cast<ConfigVariable>(index)), nullptr);
    });
  }
}

TEST(GetConfigValueByName, LogsAnUnknownName) {
  for (const std::string name : {"_MAX_POSSIBLE_KEL_CONF_VAR_NAME", "NAME", "", "dump_d"}) {
    const std::string contents = name + " value\n";  // the file does not make the name known
    expectError("variable '" + name +
                    "' was found neither in /etc/kel/kel.conf, nor in compile-time defaults\n",
                contents.c_str(),
                [&name] { EXPECT_EQ(getConfigValueByName(name.c_str()), nullptr); });
  }
}

// --- the program ----------------------------------------------------------------

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
