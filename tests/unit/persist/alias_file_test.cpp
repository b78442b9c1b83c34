#include "persist/alias_file.h"

#include <gtest/gtest.h>

#include "support/files.h"

namespace addrtool::testing {
namespace {

TEST(InterfaceConfigPath, IsAFixedPrefixAndTheLabel) {
  for (const std::string label : {"eth0", "eth0:1", "", "../x y"}) {
    EXPECT_EQ(interfaceConfigPath(label), "/etc/sysconfig/network-scripts/ifcfg-" + label);
  }
}

// Expects that the file of the alias starts with this content, although there is an old file.
// Whether a fourth line follows depends on the machine.
void expectContent(LabelledAddress alias, const std::string& content) {
  const TemporaryDirectory directory;
  writeFile(directory / "old", "IPADDR=\"10.0.0.9\"\n");
  std::FILE* oldFile = std::fopen((directory / "old").c_str(), "r");
  std::FILE* newFile = std::fopen((directory / "new").c_str(), "w");
  EXPECT_EQ(writeAliasContent(oldFile, newFile, &alias), 0);
  EXPECT_EQ(std::ftell(oldFile), 0) << "the old file is not read";
  std::fclose(oldFile);
  std::fclose(newFile);
  const std::string written = readFile(directory / "new");
  EXPECT_EQ(written.substr(0, content.size()), content);
}

TEST(AliasContent, GivesDeviceAddressAndNetmask) {
  expectContent({"eth0:1", {"10.0.0.5", 24}},
                "DEVICE=\"eth0:1\"\nIPADDR=\"10.0.0.5\"\nNETMASK=\"255.255.255.0\"\n");
}

TEST(AliasContent, TreatsPrefixLength0As32) {
  for (const std::uint16_t length : std::vector<std::uint16_t>{0, 32}) {
    expectContent({"eth0:1", {"10.0.0.5", length}},
                  "DEVICE=\"eth0:1\"\nIPADDR=\"10.0.0.5\"\nNETMASK=\"255.255.255.255\"\n");
  }
}

TEST(AliasContent, WritesItsValuesWithoutEscaping) {
  expectContent({"e\"t$h%s", {" 010.0.0.05\"", 8}},
                "DEVICE=\"e\"t$h%s\"\nIPADDR=\" 010.0.0.05\"\"\nNETMASK=\"255.0.0.0\"\n");
}

TEST(AliasContent, ReportsSuccessAlthoughTheDiskIsFull) {
  std::FILE* full = std::fopen("/dev/full", "w");
  std::setvbuf(full, nullptr, _IONBF, 0);
  LabelledAddress alias{"eth0:1", {"10.0.0.5", 24}};
  EXPECT_EQ(writeAliasContent(nullptr, full, &alias), 0);
  EXPECT_NE(std::ferror(full), 0);
  std::fclose(full);
}

}  // namespace
}  // namespace addrtool::testing
