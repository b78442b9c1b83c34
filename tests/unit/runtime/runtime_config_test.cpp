#include "runtime/runtime_config.h"

#include <malloc.h>

#include <cerrno>
#include <cstring>

#include "support/child_process.h"
#include "support/failing_call.h"
#include "support/files.h"
#include "support/log_recorder.h"

namespace addrtool::testing {
namespace {

std::string kelConf;  // what is opened in place of /etc/kel/kel.conf

// Runs the function with a file of these contents, or with none if they are null. The library keeps
// what it loaded, so each function runs in a child process. A failed expectation prints there.
Outcome runWithFile(const char* contents, const std::function<void()>& function) {
  const TemporaryDirectory directory;
  kelConf = directory / "kel.conf";
  if (contents != nullptr) writeFile(kelConf, contents);
  return runInChild(function);
}

// Expects that nothing is printed, so each expectation in the function holds.
void expectWithFile(const char* contents, const std::function<void()>& expectations) {
  EXPECT_EQ(runWithFile(contents, expectations), silentSuccess);
}

// Expects one error of priority 3 from the function, on both streams.
void expectError(const std::string& message, const char* contents,
                 const std::function<void()>& function) {
  EXPECT_EQ(runWithFile(contents, function), onBothStreams(message + '\n'));
  expectWithFile(contents, [&] {
    const LogRecorder log;
    function();
    EXPECT_EQ(LogRecorder::take(), (std::vector<LoggedMessage>{{3, message}}));
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

TEST(LoadRuntimeConfiguration, KeepsNothingAfterAFailure) {
  expectWithFile(nullptr, [] {
    EXPECT_EQ(loadRuntimeConfiguration(), -1);
    EXPECT_EQ(errno, ENOENT);
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i) static_cast<void>(loadRuntimeConfiguration());
    EXPECT_LT(mallinfo2().uordblks - before, 20000U);
    fs::create_directory(kelConf);
    EXPECT_EQ(loadRuntimeConfiguration(), -1);
    EXPECT_EQ(lookupConfigFile("NAME"), nullptr);
    fs::remove(kelConf);
    writeFile(kelConf, "NAME value\n");
    EXPECT_STREQ(lookupConfigFile("NAME"), "value");
  });
}

TEST(LoadRuntimeConfiguration, FailsWhenMemoryRunsOut) {
  expectError("Not enough memory to allocate Vexa runtime configuration structure", "", [] {
    const FailingAllocations failing(1);
    EXPECT_EQ(loadRuntimeConfiguration(), -1);
    EXPECT_EQ(loadRuntimeConfiguration(), 0);
  });
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

TEST(LookupConfigFile, LoadsTheFileAndFindsOnlyItsNames) {
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
  for (const char* const contents :
       {everything.c_str(), "# nothing\n", static_cast<const char*>(nullptr)}) {
    expectWithFile(contents, [isDefined = contents == everything.c_str()] {
      for (std::size_t i = 0; i < configVariables.size(); ++i) {
        const auto variable = static_cast<ConfigVariable>(i);
        const auto& [name, defaultValue] = configVariables.at(i);
        const std::string value = isDefined ? "value of " + std::string(name) : defaultValue;
        EXPECT_STREQ(getConfigValueOrDefault(variable), value.c_str());
        EXPECT_STREQ(getConfigValue(variable), isDefined ? value.c_str() : nullptr);
        if (variable == ConfigVariable::MAX_POSSIBLE_KEL_CONF_VAR) break;  // has no name to look up
        EXPECT_STREQ(getConfigValueByName(name), value.c_str());
      }
    });
  }
}

TEST(ConfigValues, AreCachedOnlyIfTheyAreInTheFile) {
  expectWithFile(nullptr, [] {
    const auto variable = ConfigVariable::DUMP_D;
    EXPECT_EQ(getConfigValue(variable), nullptr);
    EXPECT_STREQ(getConfigValueOrDefault(variable), "/var/lib/kel/dumps");
    EXPECT_STREQ(getConfigValueByName("DUMP_D"), "/var/lib/kel/dumps");
    EXPECT_EQ(getConfigValue(variable), nullptr);
    writeFile(kelConf, "DUMP_D /elsewhere\n");
    EXPECT_STREQ(getConfigValueOrDefault(variable), "/elsewhere");
    EXPECT_EQ(getConfigValue(variable), getConfigValueByName("DUMP_D"));
    EXPECT_EQ(getConfigValue(ConfigVariable::DUMP_TMP_D), nullptr);
  });
}

TEST(ConfigValues, AreNullOutsideTheTable) {
  for (const unsigned index : {30U, 31U, 255U}) {
    expectWithFile("NAME value\n", [index] {
      EXPECT_EQ(getConfigValue(static_cast<ConfigVariable>(index)), nullptr);
      EXPECT_EQ(getConfigValueOrDefault(static_cast<ConfigVariable>(index)), nullptr);
    });
  }
}

TEST(ConfigValues, AnUnknownNameIsLogged) {
  for (const std::string name : {"_MAX_POSSIBLE_KEL_CONF_VAR_NAME", "NAME", "", "dump_d"}) {
    const std::string contents = name + " value\n";  // the file does not make the name known
    expectError("variable '" + name +
                    "' was found neither in /etc/kel/kel.conf, nor in compile-time defaults",
                contents.c_str(),
                [&name] { EXPECT_EQ(getConfigValueByName(name.c_str()), nullptr); });
  }
}

}  // namespace
}  // namespace addrtool::testing

// The linker redirects the calls of fopen(3) (--wrap).
// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming)
extern "C" {

std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode) {
  const bool isConfig = std::strcmp(path, "/etc/kel/kel.conf") == 0;
  return __real_fopen(isConfig ? addrtool::testing::kelConf.c_str() : path, mode);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming)
