// The answers of --qv-assigned-ip. tests/unit/container tests how a line is searched.
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

TEST(ContainerCheck, AnswersADigitForEachAddressAndNothingElse) {
  struct Row {
    std::string preparation;  // run without /proc/qv
    Lines addresses;
    std::string answer;
  };
  const std::string inDirectory = "mkdir /proc/qv; cd /proc/qv; ";
  const std::vector<Row> rows{
      {"true", {"10.0.0.1", ""}, "00"},
      {inDirectory, {"10.0.0.1", ""}, "00"},
      {inDirectory + "printf '101 0 2 10.0.0.1 10.0.0.2\\n2001:db8::1\\n' >veinfo",
       {"10.0.0.1", "10.0.0.2", "2001:db8::1", "10.0.0.3", ""},
       "11101"},
      {inDirectory + "echo 10.0.0.12 >veinfo", {"10.0.0.1", "0.0.0.12"}, "11"},
      {inDirectory + "echo 2001:db8::1 >veinfo", {"2001:DB8::1", "2001:db8:0::1"}, "00"},
      {inDirectory + "printf 'first\\n10.0.0.1' >veinfo",
       {"10.0.0.9", "10.0.0.1", "10.0.0.1", "10.0.0.9"},
       "0110"},
      {inDirectory + "touch veinfo", {"", "10.0.0.1"}, "10"},
      {inDirectory + "mkdir veinfo", {"10.0.0.1", ""}, "01"},
      {inDirectory + "ln -s veinfo veinfo", {"10.0.0.1", ""}, "00"},
      // This file opens, but the first read fails.
      {inDirectory + "ln -s /proc/self/mem veinfo", {"10.0.0.1"}, "0"},
  };
  for (const auto& [preparation, addresses, answer] : rows) {
    prepare("rm -rf /proc/qv; " + preparation);
    Lines arguments;
    for (const std::string& address : addresses) arguments.insert(arguments.end(), {"-v", address});
    EXPECT_EQ(runAddrtool(arguments), success(answer)) << preparation;
    EXPECT_EQ(runAddrtool({"--qv-assigned-ip", addresses[0]}), success(answer.substr(0, 1)));
  }
}

}  // namespace
}  // namespace addrtool::testing
