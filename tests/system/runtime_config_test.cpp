// Calls the library that reads /etc/kel/kel.conf. It keeps what it loaded as long as the process
// lives, so each case runs in a child process.
#include "runtime/runtime_config.h"

#include <malloc.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "support/failing_call.h"
#include "support/log_recorder.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const fs::path config = "/etc/kel/kel.conf";
constexpr const char* definesNothing = "# nothing\n";

void print(const char* text) {
  std::printf("%s\n", text == nullptr ? "(null)" : text);
}

void printLoading() {
  std::printf("%d\n", loadRuntimeConfiguration());
}

// What a child process prints on standard output if the file has these contents at its start. Null
// stands for no file.
std::string outputWith(const char* contents, const std::function<void()>& function) {
  fs::create_directories(config.parent_path());
  fs::remove(config);
  if (contents != nullptr) writeFile(config, contents);
  const Outcome outcome = runInChild(function);
  EXPECT_EQ(outcome.exitStatus, 0) << outcome.err;
  return outcome.out;
}

// Expects that the function returns true in a child process, which prints nothing.
void expectInChild(const std::function<bool()>& function) {
  EXPECT_EQ(runInChild([&] { std::exit(function() ? 9 : 8); }), (Outcome{9, 0, "", ""}));
}

// Prints the result of the function for every variable.
void printAll(const char* (*valueOf)(ConfigVariable)) {
  for (std::size_t i = 0; i < configVariables.size(); ++i) {
    print(valueOf(static_cast<ConfigVariable>(i)));
  }
}

std::string joinedDefaults(std::size_t count) {
  std::string defaults;
  for (std::size_t i = 0; i < count; ++i) {
    defaults += std::string(configVariables.at(i).defaultValue) + "\n";
  }
  return defaults;
}

TEST(LoadRuntimeConfiguration, ReadsTheFileOnce) {
  EXPECT_EQ(outputWith("NAME first\n",
                       [] {
                         printLoading();
                         writeFile(config, "NAME second\n");
                         printLoading();
                         print(lookupConfigFile("NAME"));
                         fs::remove(config);
                         printLoading();
                       }),
            "0\n0\nfirst\n0\n");
}

TEST(LoadRuntimeConfiguration, AMissingFileFailsSilentlyAndLeaksNothing) {
  fs::remove_all(config.parent_path());
  expectInChild([] { return loadRuntimeConfiguration() == -1 && errno == ENOENT; });
  expectInChild([] {
    static_cast<void>(loadRuntimeConfiguration());
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i) static_cast<void>(loadRuntimeConfiguration());
    return mallinfo2().uordblks - before < 20000;
  });
}

TEST(LoadRuntimeConfiguration, NothingIsKeptAfterAFailure) {
  EXPECT_EQ(outputWith(nullptr,
                       [] {
                         printLoading();
                         fs::create_directory(config);
                         printLoading();
                         fs::remove(config);
                         writeFile(config, "NAME value\n");
                         printLoading();
                         print(lookupConfigFile("NAME"));
                       }),
            "-1\n-1\n0\nvalue\n");
}

TEST(LoadRuntimeConfiguration, OutOfMemoryForTheStructureIsLogged) {
  EXPECT_EQ(outputWith(definesNothing,
                       [] {
                         const FailingAllocations failing(1);
                         printLoading();
                         printLoading();
                       }),
            "Not enough memory to allocate Vexa runtime configuration structure\n-1\n0\n");
  expectInChild([] {
    const LogRecorder log;
    const FailingAllocations failing(1);
    const bool failed = loadRuntimeConfiguration() == -1;
    const auto messages = LogRecorder::take();
    return failed && messages.size() == 1 && messages[0].priority == 3;
  });
}

TEST(LoadRuntimeConfiguration, OutOfMemoryForTheTableFails) {
  for (const int nth : {2, 3, 4, 5, 6}) {
    EXPECT_EQ(outputWith("NAME value\n",
                         [nth] {
                           {
                             const FailingAllocations failing(nth);
                             printLoading();
                           }
                           print(lookupConfigFile("NAME"));
                         }),
              "-1\nvalue\n")
        << "for allocation " << nth;
  }
}

TEST(LookupConfigFile, LoadsTheFileAndFindsTheName) {
  EXPECT_EQ(outputWith("B 1\nNAME value\nA 2\nB 3\n",
                       [] {
                         print(lookupConfigFile("NAME"));
                         print(lookupConfigFile("B"));
                         print(lookupConfigFile("C"));
                         print(lookupConfigFile("DUMP_D"));
                       }),
            "value\n3\n(null)\n(null)\n");
}

TEST(LookupConfigFile, ReturnsNullWhileTheFileCannotBeLoaded) {
  EXPECT_EQ(outputWith(nullptr,
                       [] {
                         print(lookupConfigFile("NAME"));
                         writeFile(config, "NAME value\n");
                         print(lookupConfigFile("NAME"));
                       }),
            "(null)\nvalue\n");
}

TEST(ConfigValues, ComeFromTheFileFirst) {
  EXPECT_EQ(outputWith("DUMP_D /elsewhere\nSA_MAX_MAIL_SIZE 7\n"
                       "_MIN_POSSIBLE_KEL_CONF_VAR_NAME lowest\n",
                       [] {
                         print(getConfigValue(ConfigVariable::DUMP_D));
                         print(getConfigValue(ConfigVariable::SA_MAX_MAIL_SIZE));
                         print(getConfigValue(ConfigVariable::DUMP_TMP_D));
                         print(getConfigValueOrDefault(ConfigVariable::DUMP_D));
                         print(getConfigValueByName("DUMP_D"));
                         print(getConfigValueByName("_MIN_POSSIBLE_KEL_CONF_VAR_NAME"));
                       }),
            "/elsewhere\n7\n(null)\n/elsewhere\n/elsewhere\nlowest\n");
}

TEST(GetConfigValue, CachesAFoundValueButNoMissingOne) {
  EXPECT_EQ(outputWith(nullptr,
                       [] {
                         print(getConfigValue(ConfigVariable::DUMP_D));
                         writeFile(config, "DUMP_D /elsewhere\n");
                         const char* value = getConfigValue(ConfigVariable::DUMP_D);
                         print(value);
                         print(value == getConfigValue(ConfigVariable::DUMP_D) ? "same" : "other");
                       }),
            "(null)\n/elsewhere\nsame\n");
}

TEST(GetConfigValue, ReturnsTheValueOfEachVariable) {
  std::string contents;
  std::string values;
  for (std::size_t i = 0; i < configVariables.size(); ++i) {
    contents += std::string(configVariables.at(i).name) + " " + std::to_string(i) + "\n";
    values += std::to_string(i) + "\n";
  }
  EXPECT_EQ(outputWith(contents.c_str(),
                       [&] {
                         printAll(getConfigValue);
                         printAll(getConfigValue);
                       }),
            values + values);
}

TEST(GetConfigValueOrDefault, FallsBackToTheDefaultOfTheVariable) {
  for (const char* const contents : {definesNothing, static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(outputWith(contents, [] { printAll(getConfigValueOrDefault); }),
              joinedDefaults(configVariables.size()));
  }
}

TEST(GetConfigValue, IsNullOutsideTheTable) {
  for (const unsigned index : {30U, 31U, 255U}) {
    EXPECT_EQ(outputWith("NAME value\n",
                         [index] {
                           const auto variable = static_cast<ConfigVariable>(index);
                           print(getConfigValue(variable));
                           print(getConfigValueOrDefault(variable));
                         }),
              "(null)\n(null)\n");
  }
}

TEST(GetConfigValueByName, KnowsAllVariablesExceptTheUpperSentinel) {
  constexpr std::size_t known = configVariables.size() - 1;
  EXPECT_EQ(outputWith(definesNothing,
                       [] {
                         for (std::size_t i = 0; i < known; ++i) {
                           print(getConfigValueByName(configVariables.at(i).name));
                         }
                       }),
            joinedDefaults(known));
}

TEST(GetConfigValueByName, LogsAnUnknownName) {
  for (const std::string name : {"_MAX_POSSIBLE_KEL_CONF_VAR_NAME", "NAME", "", "dump_d"}) {
    const std::string line = "variable '" + name +
                             "' was found neither in /etc/kel/kel.conf, nor in compile-time "
                             "defaults\n";
    fs::create_directories(config.parent_path());
    writeFile(config, name + " value\n");  // the file does not make the name known
    EXPECT_EQ(runInChild([&] { print(getConfigValueByName(name.c_str())); }),
              (Outcome{0, 0, line + "(null)\n", line}));
    expectInChild([&] {
      const LogRecorder log;
      getConfigValueByName(name.c_str());
      const auto messages = LogRecorder::take();
      return messages.size() == 1 && messages[0].priority == 3;
    });
  }
}

}  // namespace
}  // namespace addrtool::testing
