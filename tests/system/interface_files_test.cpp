// The interface configuration files in their fixed place, as root, read back by a shell.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "persist/alias_file.h"
#include "persist/ipv6_list.h"
#include "support/child_process.h"
#include "support/failure.h"
#include "support/files.h"
#include "support/system_calls.h"

namespace addrtool::testing {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

const fs::path directory = "/etc/sysconfig/network-scripts";
const fs::path aliasFile = directory / "ifcfg-eth0:1";
const fs::path interfaceFile = directory / "ifcfg-eth0";
const fs::path suseMarker = "/etc/SuSE-release";

const std::string threeLines =
    "DEVICE=\"eth0:1\"\nIPADDR=\"10.0.0.5\"\nNETMASK=\"255.255.255.0\"\n";
const std::string fourLines = threeLines + "STARTMODE='onboot'\n";

void writeAlias() {
  writeAliasFile({"eth0:1", {"10.0.0.5", 24}});
}

// Without an earlier error, which a report would carry on.
Outcome runAlone(const std::function<void()>& function) {
  return runInChild([&function] {
    errno = 0;
    function();
  });
}

// Owner, group, mode and identity.
struct Status {
  uid_t user = 0;
  gid_t group = 0;
  mode_t mode = 0;
  ino_t inode = 0;

  explicit Status(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    user = status.st_uid;
    group = status.st_gid;
    mode = status.st_mode & 07777U;
    inode = status.st_ino;
  }
};

void expectStatus(const fs::path& path, uid_t user, gid_t group, mode_t mode) {
  const Status status(path);
  EXPECT_EQ(status.user, user);
  EXPECT_EQ(status.group, group);
  EXPECT_EQ(status.mode, mode);
}

void giveAway(const fs::path& path, uid_t user, gid_t group, mode_t mode) {
  ASSERT_EQ(chown(path.c_str(), user, group), 0);
  ASSERT_EQ(chmod(path.c_str(), mode), 0);
}

// What a shell makes of the variable once it has read the file.
std::string sourced(const fs::path& path, const std::string& variable) {
  return runShell(". '" + path.string() + "' && printf %s \"$" + variable + "\"").out;
}

void mountOverDirectory(unsigned long flags, const std::string& options) {
  ASSERT_EQ(mount("test", directory.c_str(), "tmpfs", flags, options.c_str()), 0);
}

class InterfaceFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(directory);
    fs::create_directory(directory);
    fs::remove_all(suseMarker);
  }
};

class AliasFiles : public InterfaceFiles {};
class IPv6Files : public InterfaceFiles {};

// --- aliases -----------------------------------------------------------------

TEST_F(AliasFiles, HaveThreeLines) {
  writeAlias();
  EXPECT_EQ(readFile(aliasFile), threeLines);
  EXPECT_EQ(listDirectory(directory), Names{"ifcfg-eth0:1"});
}

TEST_F(AliasFiles, HaveAFourthLineOnSuse) {
  writeFile(suseMarker, "");
  writeAlias();
  EXPECT_EQ(readFile(aliasFile), fourLines);
  EXPECT_EQ(listDirectory(directory), Names{"ifcfg-eth0:1"});
}

TEST_F(AliasFiles, TakeAnythingOfThatNameForSuse) {
  fs::create_directory(suseMarker);
  writeAlias();
  EXPECT_EQ(readFile(aliasFile), fourLines);
  fs::remove(suseMarker);
  fs::create_symlink("/dev/null", suseMarker);
  writeAlias();
  EXPECT_EQ(readFile(aliasFile), fourLines);
}

TEST_F(AliasFiles, DoNotTakeALinkToNothingForSuse) {
  fs::create_symlink("/etc/missing", suseMarker);
  writeAlias();
  EXPECT_EQ(readFile(aliasFile), threeLines);
}

TEST_F(AliasFiles, LookForSuseEachTime) {
  writeAlias();
  writeFile(suseMarker, "SUSE\n");
  writeAlias();
  EXPECT_EQ(readFile(aliasFile), fourLines);
  fs::remove(suseMarker);
  writeAlias();
  EXPECT_EQ(readFile(aliasFile), threeLines);
}

TEST_F(AliasFiles, SayTheSameToAShell) {
  writeFile(suseMarker, "");
  writeAlias();
  EXPECT_EQ(sourced(aliasFile, "DEVICE"), "eth0:1");
  EXPECT_EQ(sourced(aliasFile, "IPADDR"), "10.0.0.5");
  EXPECT_EQ(sourced(aliasFile, "NETMASK"), "255.255.255.0");
  EXPECT_EQ(sourced(aliasFile, "STARTMODE"), "onboot");
}

TEST_F(AliasFiles, BelongToRootWhateverTheUmaskAndTheDirectory) {
  giveAway(directory, 0, 34, 02755);  // files made in it are of this group at first
  umask(077);
  writeAlias();
  expectStatus(aliasFile, 0, 0, 0644);
}

TEST_F(AliasFiles, GetOwnerThenModeThenPlaceAndNoSync) {
  const Trace trace =
      traceCommand({"-e", "trace=chown,chmod,rename,unlink,fsync,fdatasync,syncfs,sync"},
                   {"addrtool", "--add", "eth0", "10.0.0.5", "255.255.255.0"});
  EXPECT_EQ(trace.outcome, silentSuccess);

  std::string calls;
  for (const std::string& call : trace.calls) {
    if (!call.starts_with("--- SIGCHLD")) calls += call + '\n';
  }
  const std::string temporary = calls.substr(0, calls.find(',')).substr(std::strlen("chown("));
  EXPECT_TRUE(temporary.starts_with('"' + aliasFile.string() + ".")) << temporary;
  EXPECT_EQ(calls, "chown(" + temporary + ", 0, 0) = 0\n" +      //
                       "chmod(" + temporary + ", 0644) = 0\n" +  //
                       "rename(" + temporary + ", " + '"' + aliasFile.string() + "\") = 0\n");
}

TEST_F(AliasFiles, AreReplacedWholeWithTheirOwnerAndMode) {
  for (const mode_t mode : {0600U, 0644U, 04755U, 02751U, 01666U}) {
    writeFile(aliasFile, "DEVICE=\"eth0:1\"\nIPADDR=\"10.0.0.9\"\nONBOOT=no\n" + fourLines);
    giveAway(aliasFile, 12, 34, mode);
    writeAlias();
    EXPECT_EQ(readFile(aliasFile), threeLines);
    expectStatus(aliasFile, 12, 34, mode);
  }
  EXPECT_EQ(listDirectory(directory), Names{"ifcfg-eth0:1"});
}

TEST_F(AliasFiles, NeedTheirDirectory) {
  fs::remove(directory);
  EXPECT_EQ(failureOf(writeAlias),
            "/etc/sysconfig/network-scripts/ifcfg-eth0:1: No such file or directory");
  EXPECT_FALSE(fs::exists(directory));
}

TEST_F(AliasFiles, TakeASlashInTheirLabelForADirectory) {
  const auto write = [] { writeAliasFile({"a/b", {"10.0.0.5", 24}}); };
  EXPECT_EQ(failureOf(write),
            "/etc/sysconfig/network-scripts/ifcfg-a/b: No such file or directory");
  fs::create_directory(directory / "ifcfg-a");
  EXPECT_EQ(failureOf(write), "");
  EXPECT_EQ(listDirectory(directory / "ifcfg-a"), Names{"b"});
  removeAliasFile("a/b");
  EXPECT_EQ(listDirectory(directory / "ifcfg-a"), Names{});
}

TEST_F(AliasFiles, NeedAFileSystemThatCanBeWritten) {
  mountOverDirectory(MS_RDONLY, "");
  EXPECT_EQ(failureOf(writeAlias),
            "/etc/sysconfig/network-scripts/ifcfg-eth0:1: Read-only file system");
}

TEST_F(AliasFiles, CannotReplaceADirectory) {
  fs::create_directory(aliasFile);
  EXPECT_EQ(failureOf(writeAlias), "/etc/sysconfig/network-scripts/ifcfg-eth0:1: Is a directory");
  const Names names = listDirectory(directory);
  ASSERT_EQ(names.size(), 2U);
  EXPECT_EQ(names[0], "ifcfg-eth0:1");
  EXPECT_TRUE(names[1].starts_with("ifcfg-eth0:1.")) << names[1];  // stays behind
  EXPECT_EQ(readFile(directory / names[1]), threeLines);
}

TEST_F(AliasFiles, NeedAPathThatIsNotTooLong) {
  const std::string label(4088 - interfaceConfigPath("").size() + 1, 'x');
  EXPECT_EQ(failureOf([&label] {
              writeAliasFile({label, {"10.0.0.5", 24}});
            }),
            interfaceConfigPath(label) + ": File name too long");
  EXPECT_EQ(listDirectory(directory), Names{});
}

// Room for two small files, one of which is there.
void fillDisk(const fs::path& file, const std::string& contents) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  mountOverDirectory(0, "nr_inodes=10,size=" + std::to_string(2 * page));
  writeFile(file, contents);
  writeFile(directory / "filler", std::string(page, 'x'));
}

TEST_F(AliasFiles, AreLostWithoutAWordWhenTheDiskIsFull) {
  fillDisk(aliasFile, threeLines);
  EXPECT_EQ(failureOf(writeAlias), "");
  EXPECT_EQ(readFile(aliasFile), "");
  EXPECT_EQ(listDirectory(directory), (Names{"filler", "ifcfg-eth0:1"}));
}

TEST_F(AliasFiles, AreRemovedAlone) {
  writeAlias();
  writeFile(interfaceFile, "DEVICE=eth0\n");
  writeFile(directory / "ifcfg-eth0:10", "");
  removeAliasFile("eth0:1");
  EXPECT_EQ(listDirectory(directory), (Names{"ifcfg-eth0", "ifcfg-eth0:10"}));
}

TEST_F(AliasFiles, AreNotMissedWhenTheyCannotBeRemoved) {
  EXPECT_EQ(runAlone([] { removeAliasFile("eth0:1"); }), silentSuccess);
  fs::create_directory(aliasFile);
  EXPECT_EQ(runAlone([] { removeAliasFile("eth0:1"); }), silentSuccess);
  EXPECT_TRUE(fs::is_directory(aliasFile));
  mountOverDirectory(MS_RDONLY, "");
  EXPECT_EQ(runAlone([] { removeAliasFile("eth0:1"); }), silentSuccess);
}

// --- IPv6 lists --------------------------------------------------------------

void add() {
  addIPv6ToInterfaceFile({"eth0", {"2001:db8::5", 64}});
}

void remove(const std::string& address) {
  removeIPv6FromInterfaceFile({"eth0", {address, 32}});
}

// That the edit says so on both streams and leaves the very file that was there.
void expectRefused(const std::function<void()>& edit, const std::string& message) {
  const std::string contents = readFile(interfaceFile);
  const Status before(interfaceFile);
  EXPECT_EQ(runAlone(edit), (Outcome{0, 0, message, message}));
  EXPECT_EQ(readFile(interfaceFile), contents);
  EXPECT_EQ(Status(interfaceFile).inode, before.inode);
  EXPECT_EQ(listDirectory(directory), Names{"ifcfg-eth0"});
}

TEST_F(IPv6Files, GetTheAddedAddressAndKeepTheirOwnerAndMode) {
  writeFile(interfaceFile, "DEVICE=eth0\nIPV6ADDR=2001:db8::1/64\n");
  giveAway(interfaceFile, 12, 34, 0640);
  EXPECT_EQ(runAlone(add), silentSuccess);
  EXPECT_EQ(readFile(interfaceFile),
            "DEVICE=eth0\nIPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=\"2001:db8::5/64\"\n");
  expectStatus(interfaceFile, 12, 34, 0640);
  EXPECT_EQ(listDirectory(directory), Names{"ifcfg-eth0"});
}

TEST_F(IPv6Files, SayTheSameToAShell) {
  writeFile(interfaceFile, "IPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=2001:db8::2/64\nMTU=9");
  add();
  EXPECT_EQ(sourced(interfaceFile, "IPV6ADDR_SECONDARIES"), "2001:db8::5/64 2001:db8::2/64");
  EXPECT_EQ(sourced(interfaceFile, "IPV6ADDR"), "2001:db8::1/64");
  EXPECT_EQ(sourced(interfaceFile, "MTU"), "9");
  remove("2001:db8::1");
  EXPECT_EQ(sourced(interfaceFile, "IPV6ADDR"), "2001:db8::5/64");
  EXPECT_EQ(sourced(interfaceFile, "IPV6ADDR_SECONDARIES"), "2001:db8::2/0");
}

TEST_F(IPv6Files, LoseTheRemovedAddressAndKeepTheirOwnerAndMode) {
  writeFile(interfaceFile,
            "IPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=2001:db8::2/64\nDEVICE=eth0\n");
  giveAway(interfaceFile, 12, 34, 0604);
  EXPECT_EQ(runAlone([] { remove("2001:DB8:0::2"); }), silentSuccess);
  EXPECT_EQ(readFile(interfaceFile), "IPV6ADDR=2001:db8::1/64\nDEVICE=eth0\n");
  expectStatus(interfaceFile, 12, 34, 0604);
  EXPECT_EQ(listDirectory(directory), Names{"ifcfg-eth0"});
}

TEST_F(IPv6Files, StayMissing) {
  EXPECT_EQ(runAlone(add), silentSuccess);
  EXPECT_EQ(runAlone([] { remove("2001:db8::1"); }), silentSuccess);
  EXPECT_EQ(listDirectory(directory), Names{});
  fs::remove(directory);
  EXPECT_EQ(runAlone(add), silentSuccess);
  EXPECT_EQ(runAlone([] { remove("2001:db8::1"); }), silentSuccess);
}

TEST_F(IPv6Files, KeepTheLastAddress) {
  writeFile(interfaceFile, "IPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=\"\"\n");
  expectRefused([] { remove("2001:DB8::1"); }, "Cannot remove last IPv6 address 2001:DB8::1\n");
}

TEST_F(IPv6Files, AreLeftAloneWhenTheirListCannotBeParsed) {
  writeFile(interfaceFile, "IPV6ADDR_SECONDARIES=\"2001:db8::2/64 \"\n");
  expectRefused(add, "\": cannot parse IPv6 address\n");
  expectRefused([] { remove("2001:db8::2"); }, "\": cannot parse IPv6 address\n");
}

TEST_F(IPv6Files, AreLeftAloneWhenTheyCannotBeReplaced) {
  writeFile(interfaceFile, "IPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=2001:db8::2/64\n");
  ASSERT_EQ(mount(directory.c_str(), directory.c_str(), nullptr, MS_BIND, nullptr), 0);
  ASSERT_EQ(mount(nullptr, directory.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr),
            0);
  expectRefused(add, "");
  expectRefused([] { remove("2001:db8::2"); }, "");
}

TEST_F(IPv6Files, AreNoDirectories) {
  fs::create_directory(interfaceFile);
  EXPECT_EQ(runAlone(add), silentSuccess);
  EXPECT_EQ(runAlone([] { remove("2001:db8::2"); }), silentSuccess);
  EXPECT_EQ(listDirectory(directory), Names{"ifcfg-eth0"});
}

TEST_F(IPv6Files, AreLostWithoutAWordWhenTheDiskIsFull) {
  fillDisk(interfaceFile, "DEVICE=eth0\n");
  EXPECT_EQ(runAlone(add), silentSuccess);
  EXPECT_EQ(readFile(interfaceFile), "");
  EXPECT_EQ(listDirectory(directory), (Names{"filler", "ifcfg-eth0"}));
}

}  // namespace
}  // namespace addrtool::testing
