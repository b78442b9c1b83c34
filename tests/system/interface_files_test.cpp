// What only shows when the configuration files in their fixed place are written directly.
#include "persist/alias_file.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

// Only existence matters, and it is checked for each file.
TEST(AliasFiles, HaveAFourthLineIfTheSuseMarkerExists) {
  const std::vector<std::pair<std::string, bool>> rows{{"true", false},
                                                       {"touch $MARKER", true},
                                                       {"mkdir $MARKER", true},
                                                       {"ln -s /dev/null $MARKER", true},
                                                       {"mkfifo $MARKER", true},
                                                       {"true", false},
                                                       {"ln -s /etc/missing $MARKER", false},
                                                       {"echo S >$MARKER", true}};
  for (const auto& [command, isSuse] : rows) {
    prepare("MARKER=/etc/SuSE-release; rm -rf $MARKER; " + command);
    writeAliasFile({"eth0:1", {"10.0.0.5", 24}});
    EXPECT_EQ(readFile(interfaceFile("eth0:1")), aliasText("eth0:1", "10.0.0.5", "255.255.255.0") +
                                                     (isSuse ? "STARTMODE='onboot'\n" : ""))
        << command;
    EXPECT_EQ(valuesInShell("eth0:1", {"IPADDR", "STARTMODE"}),
              (Lines{"10.0.0.5", isSuse ? "onboot" : ""}));
  }
  EXPECT_EQ(listDirectory(networkScripts), (Lines{"ifcfg-eth0", "ifcfg-eth0:1"}));
}

TEST(AliasFiles, ASlashInTheLabelIsADirectory) {
  const auto write = [] { writeAliasFile({"a/b", {"10.0.0.5", 24}}); };
  EXPECT_EQ(failureOf(write),
            "/etc/sysconfig/network-scripts/ifcfg-a/b: No such file or directory");
  fs::create_directory(networkScripts / "ifcfg-a");
  EXPECT_EQ(failureOf(write), "");
  EXPECT_EQ(listDirectory(networkScripts / "ifcfg-a"), Lines{"b"});
  removeAliasFile("a/b");
  EXPECT_EQ(listDirectory(networkScripts / "ifcfg-a"), Lines{});
}

}  // namespace
}  // namespace addrtool::testing
