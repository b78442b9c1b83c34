// An alias label has at most 15 bytes. ifconfig truncates a longer one and changes whatever has the
// truncated name, so no command may run with it.

#include <algorithm>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string name4 = "ens3";
const std::string name12 = "enp193s0f1np";
const std::string name13 = "enp193s0f1np1";
const std::string name14 = "enp193s0f1np12";
const std::string name15 = "enx001122334455";

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
  const std::string address = "10.1.3." + std::to_string(number);
  const std::string label = interface + ':' + std::to_string(number);
  MachineState expected;
  EXPECT_EQ(runAddrtool({"-a", interface, address, "255.255.255.255"}), silentSuccess);
  expected.addresses.push_back(label + ' ' + address + "/32");
  std::ranges::sort(expected.addresses);
  expected.files["ifcfg-" + label] = {aliasText(label, address, "255.255.255.255")};
  EXPECT_EQ(MachineState(), expected);
}

// ifconfig could also change the flags of a link.
void expectRefusal(const Lines& arguments, const std::string& message) {
  const auto links = [] { return runCommand({"ip", "-o", "link", "show"}).out; };
  const std::string linksBefore = links();
  const MachineState before;
  expectCommandLines(arguments, {}, failure(message));
  EXPECT_EQ(MachineState(), before);
  EXPECT_EQ(links(), linksBefore);
}

void expectNoFreeNumber(const std::string& interface) {
  expectRefusal({"-a", interface, "10.1.3.100", "255.255.255.255"},
                interface + ": no free alias number.");
}

TEST(AliasLabels, NamesOf14And15BytesHaveNoNumber) {
  for (const std::string& name : {name14, name15}) {
    makeInterface(name);
    expectNoFreeNumber(name);
    ip("link delete " + name);
  }
}

TEST(AliasLabels, ANameOf13BytesHasNineNumbers) {
  makeInterface(name13);
  takeNumbers(name13, 1, 4);
  takeNumbers(name13, 6, 8);
  expectNextAlias(name13, 5);
  expectNextAlias(name13, 9);
  expectNoFreeNumber(name13);
}

TEST(AliasLabels, ANameOf12BytesHas99Numbers) {
  makeInterface(name12);
  takeNumbers(name12, 1, 98);
  expectNextAlias(name12, 99);
  expectNoFreeNumber(name12);
}

TEST(AliasLabels, AShortNameHasNumbersAbove99) {
  makeInterface(name4);
  takeNumbers(name4, 1, 99);
  expectNextAlias(name4, 100);
}

TEST(AliasLabels, AnAliasWhoseLabelBecameTooLongIsKept) {
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
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({name13 + " 10.1.1.1/24"}));
}

// ifconfig would add to the interface with the truncated name.
TEST(AliasLabels, AnIPv6AddOnALabelThatIsTooLongIsRefused) {
  makeInterface(name15);
  for (const std::string& label : {name15 + ":1", name15 + "6"}) {
    expectRefusal({"-a", label, "2001:db8:1::9", "64"}, label + ": alias label too long.");
    expectRefusal({"-a", label, "2001:db8:1::9", "x"}, "x: cannot convert to int");
  }
  const std::string command = " add 2001:db8:1::9/64";
  expectCommandLines({"-a", name15, "2001:db8:1::9", "64"}, {"/sbin/ifconfig " + name15 + command});
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

  expectCommandLines({"-d", "10.1.2.1"},
                     {"/sbin/ifconfig '" + name13 + ":1' down",
                      "/sbin/ifconfig '" + name13 + ":0' '10.1.2.2' netmask  '255.255.255.0' up"},
                     failure(name13 + ":10: alias label too long."));
  EXPECT_EQ(kernelAddresses(),
            withFreshAddresses({name13 + " 10.1.1.1/24", name13 + ":0 10.1.2.2/24"}));
  EXPECT_EQ(networkFiles(), files);
}

}  // namespace
}  // namespace addrtool::testing
