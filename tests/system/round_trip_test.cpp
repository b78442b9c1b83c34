// Two hundred random changes, each checked three ways against a model: what the kernel has, what
// the program lists, and every byte of the files.

#include <algorithm>
#include <cstddef>
#include <map>
#include <random>
#include <sstream>
#include <utility>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

struct IPv4 {
  std::string address;
  std::string netmask;
  std::string length;
};

// In one subnet after the other: those of the same subnet go and come back together. 192.0.2.1 and
// 198.51.100.1 are main addresses.
const std::vector<IPv4> ipv4Pool{
    {"192.0.2.1", "255.255.255.0", "24"},     {"192.0.2.10", "255.255.255.0", "24"},
    {"192.0.2.11", "255.255.255.128", "25"},  {"198.51.100.1", "255.255.255.0", "24"},
    {"198.51.100.9", "255.255.255.0", "24"},  {"10.0.0.1", "255.255.255.0", "24"},
    {"10.0.0.2", "255.255.255.0", "24"},      {"10.0.0.3", "255.255.255.0", "24"},
    {"10.0.0.4", "255.255.255.0", "24"},      {"10.0.0.5", "255.255.255.0", "24"},
    {"10.0.0.6", "255.255.255.0", "24"},      {"10.0.0.7", "255.255.255.0", "24"},
    {"172.16.0.1", "255.255.0.0", "16"},      {"172.16.0.2", "255.255.0.0", "16"},
    {"172.16.255.3", "255.255.0.0", "16"},    {"203.0.113.1", "255.255.255.255", "32"},
    {"203.0.113.2", "255.255.255.255", "32"},
};

// The kernel's text and another form of it.
struct IPv6 {
  std::string address;
  std::string otherForm;
  std::string length;
};

const std::vector<IPv6> ipv6Pool{
    {"2001:db8::1", "2001:DB8:0::1", "64"},       {"2001:db8:1::1", "2001:db8:0001::0001", "64"},
    {"2001:db8::a", "2001:0DB8::A", "64"},        {"2001:db8::b", "2001:db8:0:0:0:0:0:b", "48"},
    {"2001:db8::c", "2001:db8::0.0.0.12", "128"}, {"2001:db8:1::d", "2001:DB8:1::D", "64"},
};

// What the file's list holds: the text as typed, and whose it is.
struct ListEntry {
  std::size_t pool;
  std::string text;
  std::string length;
};

struct ModelInterface {
  std::size_t mainIPv4;                // in the pool
  std::map<int, std::size_t> aliases;  // by number
  std::vector<std::size_t> ipv6;       // on the running system
  std::string fileHead;                // up to IPV6ADDR=
  ListEntry primary;                   // the value of IPV6ADDR
  std::vector<ListEntry> secondaries;
};

std::string formatEntry(const ListEntry& entry) {
  return entry.text + '/' + entry.length;
}

bool holds(const std::vector<std::size_t>& addresses, std::size_t address) {
  return std::find(addresses.begin(), addresses.end(), address) != addresses.end();
}

// The rules of adding and deleting, said once more and differently.
class Model {
 public:
  explicit Model(std::map<std::string, ModelInterface> interfaces)
      : interfaces_(std::move(interfaces)) {}

  // Each returns whether the program is to succeed.
  bool addIPv4(const std::string& name, std::size_t address) {
    ModelInterface& interface = interfaces_.at(name);
    if (address == interface.mainIPv4 || numberOf(interface, address) != 0) return false;
    int number = 1;
    while (interface.aliases.contains(number)) ++number;
    interface.aliases[number] = address;
    return true;
  }

  bool deleteIPv4(std::size_t address) {
    for (auto& [name, interface] : interfaces_) {
      if (address == interface.mainIPv4) return false;
      const int number = numberOf(interface, address);
      if (number != 0) return interface.aliases.erase(number) != 0;
    }
    return false;
  }

  bool addIPv6(const std::string& name, std::size_t address, const std::string& typed) {
    ModelInterface& interface = interfaces_.at(name);
    if (holds(interface.ipv6, address)) return false;
    interface.ipv6.push_back(address);
    loseLastLength(interface);
    interface.secondaries.insert(interface.secondaries.begin(),
                                 {address, typed, ipv6Pool[address].length});
    return true;
  }

  bool deleteIPv6(std::size_t address) {
    for (auto& [name, interface] : interfaces_) {
      if (!holds(interface.ipv6, address)) continue;
      if (interface.ipv6.size() == 1) return false;
      std::erase(interface.ipv6, address);
      loseLastLength(interface);
      auto& secondaries = interface.secondaries;
      if (interface.primary.pool == address) {
        interface.primary = secondaries.front();
        secondaries.erase(secondaries.begin());
      }
      std::erase_if(secondaries, [&](const ListEntry& entry) { return entry.pool == address; });
      return true;
    }
    return false;
  }

  Lines addresses() const {
    Lines lines;
    for (const auto& [name, interface] : interfaces_) {
      const IPv4& main = ipv4Pool[interface.mainIPv4];
      lines.push_back(name + ' ' + main.address + '/' + main.length);
      for (const auto& [number, address] : interface.aliases) {
        lines.push_back(name + ':' + std::to_string(number) + ' ' + ipv4Pool[address].address +
                        '/' + ipv4Pool[address].length);
      }
      for (const std::size_t address : interface.ipv6) {
        lines.push_back(name + ' ' + ipv6Pool[address].address + '/' + ipv6Pool[address].length);
      }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  Lines listing() const {
    Lines lines;
    for (const auto& [name, interface] : interfaces_) {
      const std::string end = ' ' + name + " 0";
      const IPv4& main = ipv4Pool[interface.mainIPv4];
      lines.push_back(main.address + ' ' + main.netmask + ' ' + name + " 1");
      for (const auto& [number, address] : interface.aliases) {
        lines.push_back(ipv4Pool[address].address + ' ' + ipv4Pool[address].netmask + end);
      }
      for (const std::size_t address : interface.ipv6) {
        lines.push_back(ipv6Pool[address].address + ' ' + ipv6Pool[address].length + end);
      }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  NetworkFiles files() const {
    NetworkFiles files;
    for (const auto& [name, interface] : interfaces_) {
      std::string& contents = files["ifcfg-" + name].contents;
      contents = interface.fileHead + "IPV6ADDR=" + formatEntry(interface.primary) + '\n';
      std::string list;
      for (const ListEntry& entry : interface.secondaries) list += ' ' + formatEntry(entry);
      if (!list.empty()) contents += "IPV6ADDR_SECONDARIES=\"" + list.substr(1) + "\"\n";
      for (const auto& [number, address] : interface.aliases) {
        const std::string label = name + ':' + std::to_string(number);
        files["ifcfg-" + label].contents = "DEVICE=\"" + label + "\"\nIPADDR=\"" +
                                           ipv4Pool[address].address + "\"\nNETMASK=\"" +
                                           ipv4Pool[address].netmask + "\"\n";
      }
    }
    return files;
  }

 private:
  // 0 when it is no alias.
  static int numberOf(const ModelInterface& interface, std::size_t address) {
    for (const auto& [number, alias] : interface.aliases) {
      if (alias == address) return number;
    }
    return 0;
  }

  // The closing quote of the list is read as part of its last entry.
  static void loseLastLength(ModelInterface& interface) {
    if (!interface.secondaries.empty()) interface.secondaries.back().length = "0";
  }

  std::map<std::string, ModelInterface> interfaces_;
};

// The same changes each time.
class RandomChanges {
 public:
  explicit RandomChanges(Model& model) : model_(model) {}

  // Does one in the model; returns what the program is told, and whether it is to succeed.
  std::pair<Lines, bool> next() {
    const std::string interface = pick(3) == 0 ? "eth1" : "eth0";
    const bool isAdd = pick(2) == 0;
    return pick(3) == 0 ? nextIPv6(interface, isAdd) : nextIPv4(interface, isAdd);
  }

 private:
  std::size_t pick(std::size_t size) { return random_() % size; }

  std::pair<Lines, bool> nextIPv4(const std::string& interface, bool isAdd) {
    const std::size_t address = pick(ipv4Pool.size());
    const auto& [text, netmask, length] = ipv4Pool[address];
    if (!isAdd) return {{"-d", text}, model_.deleteIPv4(address)};
    return {{"-a", interface, text, netmask}, model_.addIPv4(interface, address)};
  }

  std::pair<Lines, bool> nextIPv6(const std::string& interface, bool isAdd) {
    const std::size_t address = pick(ipv6Pool.size());
    const auto& [kernelText, otherForm, length] = ipv6Pool[address];
    const std::string& text = pick(2) == 0 ? kernelText : otherForm;
    if (!isAdd) return {{"-d", text}, model_.deleteIPv6(address)};
    return {{"-a", interface, text, length}, model_.addIPv6(interface, address, text)};
  }

  Model& model_;
  std::mt19937 random_{20240229};  // NOLINT(cert-msc32-c,cert-msc51-cpp)
};

Lines sortedListing() {
  std::istringstream output(runAddrtool({"--list"}).out);
  Lines lines;
  for (std::string line; std::getline(output, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

TEST(RoundTrip, KernelListingAndFilesAgreeAfterEachOf200Changes) {
  const std::string eth0 = readFile(interfaceFile("eth0"));
  const std::string eth0Head = eth0.substr(0, eth0.find("IPV6ADDR="));
  const std::string eth1Head = "# eth1\n\nDEVICE=eth1\n";
  addInterface("eth1", {"198.51.100.1/24", "2001:db8:1::1/64"});
  writeFile(interfaceFile("eth1"), eth1Head + "IPV6ADDR=2001:db8:1::1/64\n");

  Model model({{"eth0", {0, {}, {0}, eth0Head, {0, "2001:db8::1", "64"}, {}}},
               {"eth1", {3, {}, {1}, eth1Head, {1, "2001:db8:1::1", "64"}, {}}}});
  RandomChanges changes(model);
  int succeeded = 0;
  for (int step = 1; step <= 200; ++step) {
    const auto [arguments, succeeds] = changes.next();
    SCOPED_TRACE("change " + std::to_string(step) + ": " + ::testing::PrintToString(arguments));
    const Outcome outcome = runAddrtool(arguments);
    ASSERT_EQ(outcome.exitStatus, succeeds ? 0 : 1) << outcome.err;
    ASSERT_EQ(kernelAddresses(), model.addresses());
    ASSERT_EQ(sortedListing(), model.listing());
    ASSERT_EQ(networkFiles(), model.files());
    if (succeeds) ++succeeded;
  }
  // Or else it has shown little.
  EXPECT_GE(succeeded, 80);
  EXPECT_LE(succeeded, 150);
}

}  // namespace
}  // namespace addrtool::testing
