// An alias label has at most 15 bytes. ifconfig truncates a longer one and changes whatever has the
// truncated name, so no IPv4 command may run with it.
#include <algorithm>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string name13 = "enp193s0f1np1";
const std::string name15 = "enx001122334455";

void renameInterface(const std::string& from, const std::string& to) {
  ip("link set " + from + " down\nlink set " + from + " name " + to + "\nlink set " + to + " up");
}

void expectAlias(const std::string& interface, int number) {
  const std::string address = "10.1.3." + std::to_string(number);
  const std::string label = interface + ':' + std::to_string(number);
  MachineState expected;
  expectSilentSuccess({"-a", interface, address, "255.255.255.255"});
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

TEST(AliasLabels, ANumberIsUsedOnlyIfItFitsBehindTheName) {
  struct Row {
    std::string name;
    int last;               // the numbers up to this one are taken
    std::vector<int> free;  // except for these
    bool isFullThen;
  };
  const std::vector<Row> rows{
      {"ens3", 100, {100}, false}, {"enp193s0f1np", 99, {99}, true},
      {name13, 9, {5, 9}, true},   {"enp193s0f1np12", 0, {}, true},
      {name15, 0, {}, true},
  };
  for (const auto& [name, last, free, isFullThen] : rows) {
    SCOPED_TRACE(name);
    addInterface(name, {"10.1.1.1/24"});
    Lines taken;
    for (int number = 1; number <= last; ++number) {
      const std::string text = std::to_string(number);
      if (std::ranges::count(free, number) == 0) {
        taken.push_back(name + ':' + text + " 10.1.2." + text + "/32");
      }
    }
    addAddresses(taken);
    for (const int number : free) expectAlias(name, number);
    if (isFullThen) {
      expectRefusal({"-a", name, "10.1.3.100", "255.255.255.255"},
                    name + ": no free alias number.");
    }
    ip("link delete " + name);
  }
}

TEST(AliasLabels, AnAliasIsDeletedOnlyIfItsLabelStillFits) {
  addInterface("eth5", {"10.1.1.1/24"});
  addAddresses({"eth5:1 10.1.2.1/32"});
  renameInterface("eth5", name15);
  expectRefusal({"-d", "10.1.2.1"}, name15 + ":1: alias label too long.");
  renameInterface(name15, name13);
  expectSilentSuccess({"-d", "10.1.2.1"});
  expectAdded({name13 + " 10.1.1.1/24"});
}

// ifconfig truncates the name.
TEST(AliasLabels, AnIPv6AddPassesANameOfAnyLength) {
  addInterface(name15, {"10.1.1.1/24"});
  expectCommandLines({"-a", name15 + "6", "2001:db8:1::9", "64"},
                     {"/sbin/ifconfig " + name15 + "6 add 2001:db8:1::9/64"});
  expectAdded({name15 + " 10.1.1.1/24", name15 + " 2001:db8:1::9/64"});
}

// With the first alias of the subnet the kernel drops the other three.
TEST(AliasLabels, RestoringStopsAtALabelThatIsTooLong) {
  addInterface("eth5", {"10.1.1.1/24"});
  addAddresses(
      {"eth5:1 10.1.2.1/24", "eth5:0 10.1.2.2/24", "eth5:10 10.1.2.3/24", "eth5:2 10.1.2.4/24"});
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
  expectAdded({name13 + " 10.1.1.1/24", name13 + ":0 10.1.2.2/24"});
  EXPECT_EQ(networkFiles(), files);
}

}  // namespace
}  // namespace addrtool::testing
