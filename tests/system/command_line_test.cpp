#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string usageText =
    "Usage: addrtool [OPTIONS]...\n"
    "\n"
    "  -l,  --list                                  list all addresses in format: "
    "\"<ipaddr> <netmask> <interface> <is-primary-ip>\\n ...\"\n"
    "  -a,  --add <interface> <ipaddress> <netmask> add IP on <interface>\n"
    "  -d,  --del <ipaddress>                       delete IP\n"
    "  -h,  --help                                  display this help and exit\n"
    "  -v,  --qv-assigned-ip <ipaddress>            determine if <ipaddress> was assigned to this "
    "VE\n";

TEST(CommandLine, NothingAskedForPrintsTheUsageText) {
  const std::vector<std::vector<std::string>> table{
      {}, {"--main"}, {"--main", "--main"}, {"operand"}, {"--"}, {"-a", ""}, {"--add="}};
  for (const auto& arguments : table) {
    EXPECT_EQ(runAddrtool(arguments), (Outcome{2, 0, "", usageText}));
  }
}

TEST(CommandLine, HelpPrintsTheUsageText) {
  EXPECT_EQ(runAddrtool({"-h"}), (Outcome{2, 0, "", usageText}));
  EXPECT_EQ(runAddrtool({"--help"}), (Outcome{2, 0, "", usageText}));
}

TEST(CommandLine, BadOptionsAloneAreComplainedOfAndPrintTheUsageText) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> table{
      {{"-x"}, "addrtool: invalid option -- 'x'\n"},
      {{"-m"}, "addrtool: invalid option -- 'm'\n"},  // --main has no short form
      {{"-x", "-y"}, "addrtool: invalid option -- 'x'\naddrtool: invalid option -- 'y'\n"},
      {{"--wrong"}, "addrtool: unrecognized option '--wrong'\n"},
      {{"--list=now"}, "addrtool: option '--list' doesn't allow an argument\n"},
      {{"-d"}, "addrtool: option requires an argument -- 'd'\n"},
      {{"-v"}, "addrtool: option requires an argument -- 'v'\n"},
      {{"-a"}, "addrtool: option requires an argument -- 'a'\n"},
      {{"--del"}, "addrtool: option '--del' requires an argument\n"},
      {{"--qv-assigned-ip"}, "addrtool: option '--qv-assigned-ip' requires an argument\n"},
      {{"--main", "--add"}, "addrtool: option '--add' requires an argument\n"}};
  for (const auto& [arguments, complaint] : table) {
    EXPECT_EQ(runAddrtool(arguments), (Outcome{2, 0, "", complaint + usageText}));
  }
}

TEST(CommandLine, WhatElseWasAskedForIsDoneInSpiteOfABadOption) {
  EXPECT_EQ(runAddrtool({"-x", "-l"}),
            (Outcome{0, 0, freshListing, "addrtool: invalid option -- 'x'\n"}));
  EXPECT_EQ(runAddrtool({"-l", "-d"}),
            (Outcome{0, 0, freshListing, "addrtool: option requires an argument -- 'd'\n"}));
}

TEST(CommandLine, ListIsAskedForInEverySpelling) {
  const std::vector<std::vector<std::string>> table{{"-l"},
                                                    {"--list"},
                                                    {"--li"},
                                                    {"--main", "-l"},
                                                    {"-l", "--main"},
                                                    {"-l", "-a", ""},
                                                    {"-a", "eth0", "-l", "-a", ""}};
  for (const auto& arguments : table) {
    EXPECT_EQ(runAddrtool(arguments), (Outcome{0, 0, freshListing, ""})) << arguments.back();
  }
}

TEST(CommandLine, ARepeatedOptionIsDoneAgain) {
  EXPECT_EQ(runAddrtool({"-l", "-l"}), (Outcome{0, 0, freshListing + freshListing, ""}));
  EXPECT_EQ(runAddrtool({"-lll"}), (Outcome{0, 0, freshListing + freshListing + freshListing, ""}));
}

TEST(CommandLine, TheUsageTextEndsWhatWasAskedForBehindIt) {
  EXPECT_EQ(runAddrtool({"-l", "-h"}), (Outcome{2, 0, freshListing, usageText}));
  EXPECT_EQ(runAddrtool({"-l", "--help"}), (Outcome{2, 0, freshListing, usageText}));
  EXPECT_EQ(runAddrtool({"-l", "-h", "-l", "-h"}), (Outcome{2, 0, freshListing, usageText}));
  EXPECT_EQ(runAddrtool({"-h", "-l"}), (Outcome{2, 0, "", usageText}));
  EXPECT_EQ(runAddrtool({"-d", "192.0.2.1", "-h"}), (Outcome{2, 0, "", usageText}));
}

TEST(CommandLine, AnAddWithoutItsTwoOperandsPrintsTheUsageText) {
  const std::vector<std::vector<std::string>> table{
      {"-a", "eth0"},
      {"-a", "eth0", "192.0.2.5"},
      {"192.0.2.5", "-a", "eth0"},
      {"-a", "eth0", "192.0.2.5", "255.255.255.0", "more"},
      {"more", "--add", "eth0", "192.0.2.5", "-l", "255.255.255.0"},
      {"-l", "-a", "eth0", "192.0.2.5"}};
  for (const auto& arguments : table) {
    EXPECT_EQ(runAddrtool(arguments), (Outcome{2, 0, "", usageText}))
        << arguments.size() << " words";
  }
  EXPECT_EQ(runAddrtool({"-l"}).out, freshListing);
}

TEST(CommandLine, OperandsMayStandBeforeOptions) {
  EXPECT_EQ(runAddrtool({"192.0.2.50", "-a", "eth0", "255.255.255.0", "-l"}),
            (Outcome{0, 0, freshListing, ""}));
  EXPECT_EQ(runAddrtool({"-l"}).out,
            "192.0.2.1 255.255.255.0 eth0 1\n"
            "192.0.2.50 255.255.255.0 eth0 0\n"
            "2001:db8::1 64 eth0 0\n");
}

TEST(CommandLine, ActionsWithAnArgumentKeepTheirOrderWhateverTheyAre) {
  const std::string failure = "192.0.2.1: cannot delete main IP on interface\n";
  EXPECT_EQ(runAddrtool({"-v", "10.0.0.1", "-d", "192.0.2.1", "-v", "10.0.0.2"}),
            (Outcome{1, 0, "0", failure}));
  EXPECT_EQ(runAddrtool({"-d", "192.0.2.1", "-v", "10.0.0.1"}), (Outcome{1, 0, "", failure}));
}

TEST(CommandLine, AFailureIsReportedAfterWhatWasDoneBefore) {
  EXPECT_EQ(runAddrtool({"-d", "192.0.2.1", "-l"}),
            (Outcome{1, 0, freshListing, "192.0.2.1: cannot delete main IP on interface\n"}));
}

}  // namespace
}  // namespace addrtool::testing
