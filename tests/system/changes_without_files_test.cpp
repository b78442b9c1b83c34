// Where the files cannot follow: the running system has been changed by then and stays so. What was
// in a file before is still there, but for the one loss that is accepted, on a full disk.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>

#include "support/child_process.h"
#include "support/files.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

namespace fs = std::filesystem;

// With an alias and a second IPv6 address to delete.
class ChangesWithoutFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(runAddrtool({"-a", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
    ASSERT_EQ(runAddrtool({"-a", "eth0", "2001:db8::5", "64"}), silentSuccess);
  }

  static Outcome addIPv4() { return runAddrtool({"-a", "eth0", "192.0.2.11", "255.255.255.0"}); }
  static Outcome addIPv6() { return runAddrtool({"-a", "eth0", "2001:db8::6", "64"}); }
  static Outcome deleteIPv4() { return runAddrtool({"-d", "192.0.2.10"}); }
  static Outcome deleteIPv6() { return runAddrtool({"-d", "2001:db8::5"}); }

  static Outcome aliasFileFailure(const std::string& error) {
    return {1, 0, "", "/etc/sysconfig/network-scripts/ifcfg-eth0:2: " + error + '\n'};
  }

  // That the running system is as after all four changes.
  static void expectAllChanged() {
    EXPECT_EQ(kernelAddresses(), (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64",
                                        "eth0 2001:db8::6/64", "eth0:2 192.0.2.11/24"}));
  }

  // Mounts a small file system there, with the files that were there before.
  static void mountSmall(const std::string& options) {
    prepare("cp -a " + networkScripts.string() + " /etc/saved; mount -t tmpfs -o mode=755," +
            options + " none " + networkScripts.string() + "; cp -a /etc/saved/. " +
            networkScripts.string());
  }

  // One page for each of the two files, and one that is taken.
  static void fillDisk() {
    mountSmall("nr_blocks=3");
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    writeFile(networkScripts / "filler", std::string(page, 'x'));
  }

  // The only file whose name is not known: what a failed replacement has left behind.
  static std::string leftOver(const std::string& label) {
    const std::string stem = interfaceFile(label).filename().string() + '.';
    const auto names = listDirectory(networkScripts);
    const auto found = std::find_if(names.begin(), names.end(), [&stem](const std::string& name) {
      return name.starts_with(stem) && name.size() == stem.size() + 6;
    });
    return found == names.end() ? "" : *found;
  }
};

TEST_F(ChangesWithoutFiles, AreKeptWithoutTheDirectory) {
  fs::remove_all(networkScripts);
  EXPECT_EQ(addIPv4(), aliasFileFailure("No such file or directory"));
  EXPECT_EQ(addIPv6(), silentSuccess);
  EXPECT_EQ(deleteIPv4(), silentSuccess);
  EXPECT_EQ(deleteIPv6(), silentSuccess);
  expectAllChanged();
  EXPECT_FALSE(fs::exists(networkScripts));
}

TEST_F(ChangesWithoutFiles, AreKeptWhenTheDirectoryIsReadOnly) {
  prepare("mount --bind -o ro " + networkScripts.string() + ' ' + networkScripts.string() +
          "; mount -o remount,bind,ro " + networkScripts.string());
  const NetworkFiles files = networkFiles();
  EXPECT_EQ(addIPv4(), aliasFileFailure("Read-only file system"));
  EXPECT_EQ(addIPv6(), silentSuccess);
  EXPECT_EQ(deleteIPv4(), silentSuccess);
  EXPECT_EQ(deleteIPv6(), silentSuccess);
  expectAllChanged();
  EXPECT_EQ(networkFiles(), files);
}

TEST_F(ChangesWithoutFiles, AreKeptWhenNoFileCanBeMade) {
  mountSmall("nr_inodes=3");  // the directory and its two files
  NetworkFiles files = networkFiles();
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(addIPv4(), aliasFileFailure("No space left on device"));
  EXPECT_EQ(addIPv6(), silentSuccess);
  EXPECT_EQ(deleteIPv6(), silentSuccess);
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(deleteIPv4(), silentSuccess);  // which needs no new file
  files.erase("ifcfg-eth0:1");
  EXPECT_EQ(networkFiles(), files);
  expectAllChanged();
}

// The accepted loss: what does not fit shows only when the new file is closed, which nobody looks
// at, and the file that is replaced loses what it had.
TEST_F(ChangesWithoutFiles, EmptyTheReplacedFileWhenTheDiskIsFull) {
  fillDisk();
  NetworkFiles files = networkFiles();
  EXPECT_EQ(addIPv4(), silentSuccess);
  files["ifcfg-eth0:2"] = {""};
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(addIPv6(), silentSuccess);
  files["ifcfg-eth0"] = {""};
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(deleteIPv4(), silentSuccess);
  EXPECT_EQ(deleteIPv6(), silentSuccess);
  files.erase("ifcfg-eth0:1");
  EXPECT_EQ(networkFiles(), files);
  expectAllChanged();
}

TEST_F(ChangesWithoutFiles, EmptyTheFileOfADeletedAddressWhenTheDiskIsFull) {
  fillDisk();
  NetworkFiles files = networkFiles();
  EXPECT_EQ(deleteIPv6(), silentSuccess);
  files["ifcfg-eth0"] = {""};
  EXPECT_EQ(networkFiles(), files);
}

// The temporary file stays behind.
TEST_F(ChangesWithoutFiles, CannotReplaceADirectoryByAnAliasFile) {
  fs::create_directory(interfaceFile("eth0:2"));
  writeFile(interfaceFile("eth0:2") / "precious", "kept\n");
  NetworkFiles files = networkFiles();
  EXPECT_EQ(addIPv4(), aliasFileFailure("Is a directory"));
  EXPECT_EQ(kernelAddresses().back(), "eth0:2 192.0.2.11/24");
  const std::string name = leftOver("eth0:2");
  ASSERT_NE(name, "");
  files[name] = {"DEVICE=\"eth0:2\"\nIPADDR=\"192.0.2.11\"\nNETMASK=\"255.255.255.0\"\n",
                 0100755};  // the mode of the directory
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(readFile(interfaceFile("eth0:2") / "precious"), "kept\n");
}

TEST_F(ChangesWithoutFiles, DoNotMissADirectoryInTheirPlace) {
  for (const char* label : {"eth0", "eth0:1"}) {
    fs::remove(interfaceFile(label));
    fs::create_directory(interfaceFile(label));
    writeFile(interfaceFile(label) / "precious", "kept\n");
  }
  const NetworkFiles files = networkFiles();
  EXPECT_EQ(addIPv6(), silentSuccess);
  EXPECT_EQ(deleteIPv4(), silentSuccess);
  EXPECT_EQ(deleteIPv6(), silentSuccess);
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64", "eth0 2001:db8::6/64"}));
  EXPECT_EQ(networkFiles(), files);
  for (const char* label : {"eth0", "eth0:1"}) {
    EXPECT_EQ(readFile(interfaceFile(label) / "precious"), "kept\n");
  }
}

void makeSocket(const std::string& label) {
  fs::remove(interfaceFile(label));
  ASSERT_EQ(mknod(interfaceFile(label).c_str(), S_IFSOCK | 0750, 0), 0);
}

TEST_F(ChangesWithoutFiles, ReplaceASocketByAnAliasFile) {
  makeSocket("eth0:2");
  NetworkFiles files = networkFiles();
  EXPECT_EQ(addIPv4(), silentSuccess);
  files["ifcfg-eth0:2"] = {"DEVICE=\"eth0:2\"\nIPADDR=\"192.0.2.11\"\nNETMASK=\"255.255.255.0\"\n",
                           0100750};  // the mode of the socket
  EXPECT_EQ(networkFiles(), files);
}

// It cannot be read, so there is nothing to edit; the temporary files stay behind.
TEST_F(ChangesWithoutFiles, LeaveASocketInPlaceOfTheInterfacesFile) {
  makeSocket("eth0");
  NetworkFiles files = networkFiles();
  EXPECT_EQ(addIPv6(), silentSuccess);
  EXPECT_EQ(kernelAddresses()[2], "eth0 2001:db8::5/64");
  EXPECT_EQ(kernelAddresses()[3], "eth0 2001:db8::6/64");
  const std::string name = leftOver("eth0");
  ASSERT_NE(name, "");
  files[name] = {"", 0100600};
  EXPECT_EQ(networkFiles(), files);
}

}  // namespace
}  // namespace addrtool::testing
