#include "persist/alias_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "support/files.h"

namespace addrtool::testing {
namespace {

TEST(InterfaceConfigPath, IsAFixedPrefixAndTheLabel) {
  const std::vector<std::pair<std::string, std::string>> table{
      {"eth0", "/etc/sysconfig/network-scripts/ifcfg-eth0"},
      {"eth0:1", "/etc/sysconfig/network-scripts/ifcfg-eth0:1"},
      {"", "/etc/sysconfig/network-scripts/ifcfg-"},
      {"../x y", "/etc/sysconfig/network-scripts/ifcfg-../x y"},
  };
  for (const auto& [label, path] : table) EXPECT_EQ(interfaceConfigPath(label), path);
}

// The first three lines. Whether there is a fourth depends on the machine.
std::string contentOf(LabelledAddress alias) {
  const TemporaryDirectory directory;
  std::FILE* file = std::fopen((directory / "new").c_str(), "w");
  EXPECT_EQ(writeAliasContent(nullptr, file, &alias), 0);
  std::fclose(file);
  const std::string content = readFile(directory / "new");
  std::size_t end = 0;
  for (int line = 0; line < 3; ++line) end = content.find('\n', end) + 1;
  return content.substr(0, end);
}

TEST(AliasContent, GivesDeviceAddressAndNetmask) {
  EXPECT_EQ(contentOf({"eth0:1", {"10.0.0.5", 24}}),
            "DEVICE=\"eth0:1\"\nIPADDR=\"10.0.0.5\"\nNETMASK=\"255.255.255.0\"\n");
}

TEST(AliasContent, TreatsPrefixLength0As32) {
  const std::string fullMask =
      "DEVICE=\"eth0:1\"\nIPADDR=\"10.0.0.5\"\nNETMASK=\"255.255.255.255\"\n";
  EXPECT_EQ(contentOf({"eth0:1", {"10.0.0.5", 0}}), fullMask);
  EXPECT_EQ(contentOf({"eth0:1", {"10.0.0.5", 32}}), fullMask);
}

TEST(AliasContent, WritesItsValuesWithoutEscaping) {
  EXPECT_EQ(contentOf({"e\"t$h%s", {" 010.0.0.05\"", 8}}),
            "DEVICE=\"e\"t$h%s\"\nIPADDR=\" 010.0.0.05\"\"\nNETMASK=\"255.0.0.0\"\n");
}

TEST(AliasContent, DoesNotReadTheOldFile) {
  const TemporaryDirectory directory;
  writeFile(directory / "old", "IPADDR=\"10.0.0.9\"\n");
  std::FILE* oldFile = std::fopen((directory / "old").c_str(), "r");
  std::FILE* newFile = std::fopen((directory / "new").c_str(), "w");
  LabelledAddress alias{"eth0:1", {"10.0.0.5", 24}};
  EXPECT_EQ(writeAliasContent(oldFile, newFile, &alias), 0);
  EXPECT_EQ(std::ftell(oldFile), 0);
  std::fclose(oldFile);
  std::fclose(newFile);
  EXPECT_TRUE(readFile(directory / "new").starts_with("DEVICE=\"eth0:1\"\n"));
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
