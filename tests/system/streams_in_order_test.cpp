// The output of the program and its commands, with both streams in one file. It must be in the
// order of the events.

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string usageStart = "Usage: addrtool [OPTIONS]...\n";
const std::string mainAddressKept = "192.0.2.1: cannot delete main IP on interface\n";
const std::string leftover =
    "Some parameters in command string are left unprocessed. Check parameters please.\n";

// Runs the program and returns both streams as one text.
std::string outputOf(const std::string& arguments) {
  const Outcome outcome = runShell("addrtool " + arguments + " 2>&1");
  EXPECT_EQ(outcome.err, "");
  return outcome.out;
}

// Makes /sbin/ifconfig write to standard error and standard output.
void makeIfconfigSpeak(int exitStatus) {
  recordIfconfig("echo complaint >&2; echo remark; exit " + std::to_string(exitStatus));
}

TEST(StreamsInOrder, AnswersComeBeforeTheMessageOfALaterFailure) {
  EXPECT_EQ(outputOf("-v 10.0.0.1 -d 192.0.2.1"), "0" + mainAddressKept);
  EXPECT_EQ(outputOf("-v 10.0.0.1 -v 10.0.0.2 -d 192.0.2.1 -v 10.0.0.3"), "00" + mainAddressKept);
  EXPECT_EQ(outputOf("-v 10.0.0.1 -a nosuch0 10.0.0.1 255.255.255.0"),
            "0nosuch0: no such network interface.\n");
}

TEST(StreamsInOrder, TheListingComesBeforeTheMessageOfALaterFailure) {
  EXPECT_EQ(outputOf("-l -d 192.0.2.1"), freshListing + mainAddressKept);
  EXPECT_EQ(outputOf("-d 192.0.2.1 -v 10.0.0.1 -l"), freshListing + mainAddressKept);
  EXPECT_EQ(outputOf("-v 10.0.0.1 -l -d 192.0.2.1"), freshListing + "0" + mainAddressKept);
}

TEST(StreamsInOrder, TheListingComesBeforeTheUsageText) {
  EXPECT_TRUE(outputOf("-l -h").starts_with(freshListing + usageStart));
  EXPECT_TRUE(outputOf("-v 10.0.0.1 -h").starts_with(usageStart));
}

TEST(StreamsInOrder, ComplaintsAboutOptionsComeFirst) {
  const std::string complaint = "addrtool: invalid option -- 'x'\n";
  EXPECT_EQ(outputOf("-l -x"), complaint + freshListing);
  EXPECT_EQ(outputOf("-v 10.0.0.1 -x -d 192.0.2.1"), complaint + "0" + mainAddressKept);
  EXPECT_TRUE(outputOf("-x").starts_with(complaint + usageStart));
  EXPECT_TRUE(outputOf("-l -x extra").starts_with(complaint + leftover));
}

// A message of the support library goes to both streams. It may end in a system error.
void expectTwice(const std::string& start, const std::string& output) {
  const std::string message = output.substr(0, output.size() / 2);
  EXPECT_TRUE(message.starts_with(start)) << output;
  EXPECT_EQ(output, message + message);
}

TEST(StreamsInOrder, LeftoverOperandsAreReportedTwice) {
  expectTwice(leftover, outputOf("-l extra"));
}

TEST(StreamsInOrder, AnswersComeBeforeTheOutputOfACommand) {
  makeIfconfigSpeak(0);
  EXPECT_EQ(outputOf("-v 10.0.0.1 -a eth0 192.0.2.2 255.255.255.0"), "0complaint\nremark\n");
  EXPECT_EQ(outputOf("-l -a eth0 192.0.2.3 255.255.255.0"), freshListing + "complaint\nremark\n");
}

TEST(StreamsInOrder, TheOutputOfACommandComesBeforeTheMessageOfItsFailure) {
  makeIfconfigSpeak(7);
  EXPECT_EQ(outputOf("-v 10.0.0.1 -a eth0 2001:db8::2 64"),
            "0complaint\nremark\n"
            "/sbin/ifconfig eth0 add 2001:db8::2/64 exited with non-zero status 7\n");
}

TEST(StreamsInOrder, TheWordsOfACommandComeBeforeTheFailureOfItsFile) {
  makeIfconfigSpeak(0);
  fs::remove_all(networkScripts);
  EXPECT_EQ(outputOf("-l -a eth0 192.0.2.2 255.255.255.0"), freshListing + "complaint\nremark\n" +
                                                                interfaceFile("eth0:1").string() +
                                                                ": No such file or directory\n");
}

TEST(StreamsInOrder, AReportOnAnInterfaceFileComesAfterEverythingBefore) {
  writeFile(interfaceFile("eth0"), "IPV6ADDR_SECONDARIES=2001:db8::9\n");
  makeIfconfigSpeak(0);
  const std::string before = freshListing + "0complaint\nremark\n";
  const std::string output = outputOf("-v 10.0.0.1 -l -a eth0 2001:db8::2 64");
  ASSERT_TRUE(output.starts_with(before)) << output;
  expectTwice("2001:db8::9: cannot parse IPv6 address\n", output.substr(before.size()));
}

TEST(StreamsInOrder, AReportOnAnInterfaceFileComesBeforeTheMessageOfALaterFailure) {
  ip("address add 2001:db8::5/64 dev eth0 nodad");
  const std::string output = outputOf("-v 10.0.0.1 -d 2001:db8::1 -d 192.0.2.1");
  ASSERT_TRUE(output.starts_with('0')) << output;
  ASSERT_TRUE(output.ends_with(mainAddressKept)) << output;
  expectTwice("Cannot remove last IPv6 address 2001:db8::1\n",
              output.substr(1, output.size() - 1 - mainAddressKept.size()));
}

}  // namespace
}  // namespace addrtool::testing
