// An alias label has at most 15 bytes. ifconfig truncates a longer one and changes whatever has the
// truncated name, so no command may run with it.
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>

#include "support/addresses.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string name4 = "ens3";
const std::string name12 = "enp193s0f1np";
const std::string name13 = "enp193s0f1np1";
const std::string name14 = "enp193s0f1np12";
const std::string name15 = "enx001122334455";

// What a refused change leaves as it was.
struct Snapshot {
  MachineState machine{};
  std::string links = runCommand({"ip", "-o", "link", "show"}).out;

  bool operator==(const Snapshot&) const = default;
};

void PrintTo(const Snapshot& snapshot, std::ostream* stream) {
  PrintTo(snapshot.machine, stream);
  *stream << '\n' << snapshot.links;
}

void makeInterface(const std::string& name) {
  ip("link add " + name + " type veth peer name peer0\nlink set " + name +
     " up\naddress add 10.1.1.1/24 dev " + name);
}

void takeNumbers(const std::string& interface, int first, int last) {
  std::string commands;
  for (int number = first; number <= last; ++number) {
    const std::string text = std::to_string(number);
    commands += "address add 10.1.2." + text + "/32 dev " + interface + " label " + interface +
                ':' + text + '\n';
  }
  ip(commands);
}

void renameInterface(const std::string& from, const std::string& to) {
  ip("link set " + from + " down\nlink set " + from + " name " + to + "\nlink set " + to + " up");
}

void expectNextAlias(const std::string& interface, int number) {
  const std::string label = interface + ':' + std::to_string(number);
  MachineState expected;
  EXPECT_EQ(runAddrtool({"-a", interface, "10.1.3.1", "255.255.255.255"}), silentSuccess);
  expected.addresses.push_back(label + " 10.1.3.1/32");
  std::ranges::sort(expected.addresses);
  expected.files["ifcfg-" + label] = {"DEVICE=\"" + label +
                                      "\"\nIPADDR=\"10.1.3.1\"\nNETMASK=\"255.255.255.255\"\n"};
  EXPECT_EQ(MachineState(), expected);
}

void expectRefusal(const Lines& arguments, const std::string& message) {
  const Snapshot before;
  const auto [outcome, commandLines] = traceCommandLines(arguments);
  EXPECT_EQ(outcome, (Outcome{1, 0, "", message + '\n'}));
  EXPECT_EQ(commandLines, Lines{});
  EXPECT_EQ(Snapshot(), before);
}

void expectNoFreeNumber(const std::string& interface) {
  expectRefusal({"-a", interface, "10.1.3.1", "255.255.255.255"},
                interface + ": no free alias number.");
}

TEST(AliasLabels, NamesOf14And15BytesLeaveNoNumber) {
  for (const std::string& name : {name14, name15}) {
    makeInterface(name);
    expectNoFreeNumber(name);
    ip("link delete " + name);
  }
}

TEST(AliasLabels, ANameOf13BytesHasNineNumbers) {
  makeInterface(name13);
  takeNumbers(name13, 1, 9);
  expectNoFreeNumber(name13);
}

TEST(AliasLabels, ANameOf13BytesGetsItsLastNumber) {
  makeInterface(name13);
  takeNumbers(name13, 1, 8);
  expectNextAlias(name13, 9);
}

TEST(AliasLabels, ANameOf13BytesGetsANumberInAGap) {
  makeInterface(name13);
  takeNumbers(name13, 1, 4);
  takeNumbers(name13, 6, 9);
  expectNextAlias(name13, 5);
}

TEST(AliasLabels, ANameOf12BytesHas99Numbers) {
  makeInterface(name12);
  takeNumbers(name12, 1, 98);
  expectNextAlias(name12, 99);
  expectNoFreeNumber(name12);
}

TEST(AliasLabels, AShortNameGoesOnBeyond99) {
  makeInterface(name4);
  takeNumbers(name4, 1, 99);
  expectNextAlias(name4, 100);
}

TEST(AliasLabels, AnAliasWhoseLabelOutgrewTheKernelStays) {
  makeInterface("eth5");
  takeNumbers("eth5", 1, 1);
  renameInterface("eth5", name15);
  expectRefusal({"-d", "10.1.2.1"}, name15 + ":1: alias label too long.");
}

TEST(AliasLabels, AnAliasWhoseLabelStillFitsIsDeleted) {
  makeInterface("eth5");
  takeNumbers("eth5", 1, 1);
  renameInterface("eth5", name13);
  EXPECT_EQ(runAddrtool({"-d", "10.1.2.1"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(),
            (Lines{name13 + " 10.1.1.1/24", "eth0 192.0.2.1/24", "eth0 2001:db8::1/64"}));
}

// With the first alias of the subnet the kernel drops the other three.
TEST(AliasLabels, RestoringStopsAtALabelThatIsTooLong) {
  makeInterface("eth5");
  ip(R"(address add 10.1.2.1/24 dev eth5 label eth5:1
        address add 10.1.2.2/24 dev eth5 label eth5:0
        address add 10.1.2.3/24 dev eth5 label eth5:10
        address add 10.1.2.4/24 dev eth5 label eth5:2)");
  renameInterface("eth5", name13);
  for (const char* const suffix : {"0", "1", "10", "2"}) {
    writeFile(interfaceFile(name13 + ':' + suffix), suffix);
  }
  NetworkFiles files = networkFiles();
  files.erase("ifcfg-" + name13 + ":1");

  const auto [outcome, commandLines] = traceCommandLines({"-d", "10.1.2.1"});
  EXPECT_EQ(outcome, (Outcome{1, 0, "", name13 + ":10: alias label too long.\n"}));
  EXPECT_EQ(commandLines,
            (Lines{"/sbin/ifconfig '" + name13 + ":1' down",
                   "/sbin/ifconfig '" + name13 + ":0' '10.1.2.2' netmask  '255.255.255.0' up"}));
  EXPECT_EQ(kernelAddresses(), (Lines{name13 + " 10.1.1.1/24", name13 + ":0 10.1.2.2/24",
                                      "eth0 192.0.2.1/24", "eth0 2001:db8::1/64"}));
  EXPECT_EQ(networkFiles(), files);
}

}  // namespace
}  // namespace addrtool::testing
