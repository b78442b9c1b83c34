#include <gtest/gtest.h>

#include <string>

#include "support/child_process.h"

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
  EXPECT_EQ(runCommand({"addrtool"}), (Outcome{2, 0, "", usageText}));
  EXPECT_EQ(runCommand({"addrtool", "--main"}), (Outcome{2, 0, "", usageText}));
}

}  // namespace
}  // namespace addrtool::testing
