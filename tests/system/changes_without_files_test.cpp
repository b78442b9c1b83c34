// When the files cannot be updated, the running system stays changed. The old contents of a file
// survive, except on a full disk.
#include <unistd.h>

#include <cstddef>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));

// With an alias and a second IPv6 address to delete.
class ChangesWithoutFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    add("192.0.2.10");
    add("2001:db8::5", "64");
  }

  static Outcome addIPv4() { return runAddrtool({"-a", "eth0", "192.0.2.11", "255.255.255.0"}); }
  static Outcome addIPv6() { return runAddrtool({"-a", "eth0", "2001:db8::6", "64"}); }
  static Outcome deleteIPv4() { return runAddrtool({"-d", "192.0.2.10"}); }
  static Outcome deleteIPv6() { return runAddrtool({"-d", "2001:db8::5"}); }

  static Outcome aliasFileFailure(const std::string& error) {
    return failure("/etc/sysconfig/network-scripts/ifcfg-eth0:2: " + error);
  }

  // Makes all four changes; only the first one reports anything.
  static void expectAllChanged(const Outcome& added) {
    EXPECT_EQ(addIPv4(), added);
    EXPECT_EQ(addIPv6(), silentSuccess);
    EXPECT_EQ(deleteIPv6(), silentSuccess);
    EXPECT_EQ(deleteIPv4(), silentSuccess);
    expectAdded({"eth0 2001:db8::6/64", "eth0:2 192.0.2.11/24"});
  }

  // Mounts a small file system there, with the files that were there before.
  static void mountSmall(const std::string& options) {
    prepare("cp -a " + networkScripts.string() + " /etc/saved; mount -t tmpfs -o mode=755," +
            options + " none " + networkScripts.string() + "; cp -a /etc/saved/. " +
            networkScripts.string());
  }

  // Leaves no free page: each file has one, and the filler has the last.
  static void fillDisk() {
    mountSmall("nr_blocks=" + std::to_string(networkFiles().size() + 1));
    writeFile(networkScripts / "filler", std::string(pageSize, 'x'));
  }
};

TEST_F(ChangesWithoutFiles, AreKeptWithoutTheDirectory) {
  fs::remove_all(networkScripts);
  expectAllChanged(aliasFileFailure("No such file or directory"));
  EXPECT_FALSE(fs::exists(networkScripts));
}

TEST_F(ChangesWithoutFiles, AreKeptWhenTheDirectoryIsReadOnly) {
  prepare("mount --bind -o ro " + networkScripts.string() + ' ' + networkScripts.string() +
          "; mount -o remount,bind,ro " + networkScripts.string());
  const NetworkFiles files = networkFiles();
  expectAllChanged(aliasFileFailure("Read-only file system"));
  EXPECT_EQ(networkFiles(), files);
}

TEST_F(ChangesWithoutFiles, AreKeptWhenNoFileCanBeMade) {
  mountSmall("nr_inodes=3");  // the directory and its two files
  NetworkFiles files = networkFiles();
  ASSERT_EQ(files.size(), 2U);
  expectAllChanged(aliasFileFailure("No space left on device"));
  files.erase("ifcfg-eth0:1");  // a removal needs no new file
  EXPECT_EQ(networkFiles(), files);
}

// Required: a short write shows only when the new file is closed, and that status is ignored. So
// the replaced file loses its contents.
TEST_F(ChangesWithoutFiles, EmptyTheReplacedFileWhenTheDiskIsFull) {
  writeFile(interfaceFile("eth0:2"), "left over\n");
  fillDisk();
  for (const auto& [label, change] :
       {std::pair("eth0", &deleteIPv6), std::pair("eth0:2", &addIPv4)}) {
    NetworkFiles files = networkFiles();
    EXPECT_EQ(change(), silentSuccess);
    files[interfaceFile(label).filename()] = {""};
    EXPECT_EQ(networkFiles(), files);
    writeFile(networkScripts / "another", std::string(pageSize, 'x'));  // takes the freed page
  }
}

TEST_F(ChangesWithoutFiles, AreKeptWhenTheDiskIsFull) {
  fillDisk();
  expectAllChanged(silentSuccess);
  EXPECT_EQ(networkFiles(), (NetworkFiles{{"filler", networkFiles().at("filler")},
                                          {"ifcfg-eth0", {""}},
                                          {"ifcfg-eth0:2", {""}}}));
}

TEST_F(ChangesWithoutFiles, IgnoreADirectoryInPlaceOfAFile) {
  for (const char* label : {"eth0", "eth0:1"}) {
    fs::remove(interfaceFile(label));
    fs::create_directory(interfaceFile(label));
  }
  writeFile(interfaceFile("eth0") / "precious", "kept\n");
  const NetworkFiles files = networkFiles();
  EXPECT_EQ(addIPv6(), silentSuccess);
  EXPECT_EQ(deleteIPv4(), silentSuccess);
  EXPECT_EQ(deleteIPv6(), silentSuccess);
  expectAdded({"eth0 2001:db8::6/64"});
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(readFile(interfaceFile("eth0") / "precious"), "kept\n");
}

}  // namespace
}  // namespace addrtool::testing
