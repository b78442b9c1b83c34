#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

namespace fs = std::filesystem;

const fs::path veinfo = "/proc/qv/veinfo";

// The answers of one run of the program to all the addresses.
Outcome check(const std::vector<std::string>& addresses) {
  std::vector<std::string> command{"addrtool"};
  for (const std::string& address : addresses) command.insert(command.end(), {"-v", address});
  return runCommand(command);
}

Outcome answer(const std::string& digits) {
  return {0, 0, digits, ""};
}

// Makes a fresh /proc/qv with the file in it.
void publish(const std::string& contents) {
  fs::create_directory(veinfo.parent_path());
  writeFile(veinfo, contents);
}

struct ContainerCheck : ::testing::Test {
  void SetUp() override { fs::remove_all(veinfo.parent_path()); }
};

TEST_F(ContainerCheck, WithoutTheFileNothingIsAssigned) {
  EXPECT_EQ(check({"10.0.0.1"}), answer("0"));
  EXPECT_EQ(check({""}), answer("0"));
  fs::create_directory(veinfo.parent_path());
  EXPECT_EQ(check({"10.0.0.1", ""}), answer("00"));
}

TEST_F(ContainerCheck, AnAddressInTheFileIsAssigned) {
  publish("101 0 2 10.0.0.1 10.0.0.2\n2001:db8::1\n");
  EXPECT_EQ(check({"10.0.0.1"}), answer("1"));
  EXPECT_EQ(check({"10.0.0.2"}), answer("1"));
  EXPECT_EQ(check({"2001:db8::1"}), answer("1"));
  EXPECT_EQ(check({"10.0.0.3"}), answer("0"));
  EXPECT_EQ(runCommand({"addrtool", "--qv-assigned-ip", "10.0.0.1"}), answer("1"));
}

TEST_F(ContainerCheck, AnAddressWithinALongerOneIsFound) {
  publish("10.0.0.12\n");
  EXPECT_EQ(check({"10.0.0.1"}), answer("1"));
  EXPECT_EQ(check({"0.0.0.12"}), answer("1"));
}

TEST_F(ContainerCheck, TheAddressIsNotNormalised) {
  publish("2001:db8::1\n");
  EXPECT_EQ(check({"2001:DB8::1"}), answer("0"));
  EXPECT_EQ(check({"2001:db8:0::1"}), answer("0"));
}

TEST_F(ContainerCheck, ALastLineWithoutANewlineIsSearched) {
  publish("first\n10.0.0.1");
  EXPECT_EQ(check({"10.0.0.1"}), answer("1"));
}

TEST_F(ContainerCheck, TheEmptyAddressNeedsOnlyAFileThatOpens) {
  publish("");
  EXPECT_EQ(check({""}), answer("1"));
  EXPECT_EQ(check({"10.0.0.1"}), answer("0"));
  publish("10.0.0.1\n");
  EXPECT_EQ(check({""}), answer("1"));
}

TEST_F(ContainerCheck, ADirectoryInPlaceOfTheFileHoldsNoAddress) {
  fs::create_directories(veinfo);
  EXPECT_EQ(check({"10.0.0.1"}), answer("0"));
  EXPECT_EQ(check({""}), answer("1"));
}

TEST_F(ContainerCheck, AReadErrorIsNoFailure) {
  fs::create_directory(veinfo.parent_path());
  fs::create_symlink("/proc/self/mem", veinfo);  // opens, but has nothing to read at its start
  EXPECT_EQ(check({"10.0.0.1"}), answer("0"));
}

TEST_F(ContainerCheck, AFileThatCannotBeOpenedIsNoFailure) {
  fs::create_directory(veinfo.parent_path());
  fs::create_symlink("veinfo", veinfo);
  EXPECT_EQ(check({"10.0.0.1", ""}), answer("00"));
}

TEST_F(ContainerCheck, EachAskedAddressGetsItsDigitAndNothingBetween) {
  publish("10.0.0.1\n");
  EXPECT_EQ(check({"10.0.0.1", "10.0.0.9"}), answer("10"));
  EXPECT_EQ(check({"10.0.0.9", "10.0.0.1", "10.0.0.1"}), answer("011"));
}

}  // namespace
}  // namespace addrtool::testing
