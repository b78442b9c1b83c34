// Dumps of a real kernel: the datagrams with which Linux 6.18 answered a request like addrtool's in
// a sandbox. ip(8) had added the addresses.
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <map>

#include "support/collect.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

// Reverses the bytes of a number in the text. Returns the number.
template <typename T>
T reverseAt(std::string& bytes, std::size_t at) {
  char* const first = bytes.data() + at;
  std::reverse(first, first + sizeof(T));
  T number{};
  std::memcpy(&number, first, sizeof(T));
  return number;
}

void reverseAttributes(std::string& datagram, std::size_t at, std::size_t end) {
  while (at < end) {
    const auto length = reverseAt<std::uint16_t>(datagram, at);
    const auto type = reverseAt<std::uint16_t>(datagram, at + 2);
    if (type == IFA_FLAGS || type == IFA_CACHEINFO || type == IFA_RT_PRIORITY) {
      for (std::size_t n = sizeof(rtattr); n < length; n += 4) {
        reverseAt<std::uint32_t>(datagram, at + n);
      }
    }
    at += (std::size_t{length} + 3) / 4 * 4;
  }
}

// The recordings are little-endian. This makes a big-endian one of a datagram, on a machine that is
// big-endian too.
void makeBigEndian(std::string& datagram) {
  for (std::size_t at = 0; at < datagram.size();) {
    const std::size_t end = at + reverseAt<std::uint32_t>(datagram, at);
    const auto type = reverseAt<std::uint16_t>(datagram, at + offsetof(nlmsghdr, nlmsg_type));
    reverseAt<std::uint16_t>(datagram, at + offsetof(nlmsghdr, nlmsg_flags));
    reverseAt<std::uint32_t>(datagram, at + offsetof(nlmsghdr, nlmsg_seq));
    reverseAt<std::uint32_t>(datagram, at + offsetof(nlmsghdr, nlmsg_pid));
    at += sizeof(nlmsghdr);
    if (type == RTM_NEWADDR) {
      reverseAt<std::uint32_t>(datagram, at + offsetof(ifaddrmsg, ifa_index));
      reverseAttributes(datagram, at + sizeof(ifaddrmsg), end);
    }
    at = end;
  }
}

std::vector<std::string> recordedDatagrams(const std::string& scene) {
  std::vector<std::string> datagrams;
  for (std::string path;
       fs::exists(path = ADDRTOOL_DATA_DIR "/" + scene + '.' + std::to_string(datagrams.size()));) {
    datagrams.push_back(readFile(path));
    if (std::endian::native == std::endian::big) makeBigEndian(datagrams.back());
  }
  return datagrams;
}

std::string nameInScene(unsigned index) {
  static const std::map<unsigned, std::string> names{{1, "lo"},    {2, "veth-peer"}, {3, "eth0"},
                                                     {10, "eth1"}, {11, "peer1"},    {12, "eth2"},
                                                     {13, "peer2"}};
  return names.at(index);
}

AddressDump replay(const std::string& scene, bool includeHostScope = false) {
  return collect(recordedDatagrams(scene), includeHostScope, nameInScene);
}

TEST(RecordedDumps, EndWithASeparateDatagram) {
  for (const auto& [scene, size] :
       std::map<std::string, std::size_t>{{"fresh", 2}, {"varied", 2}, {"many", 4}}) {
    const auto datagrams = recordedDatagrams(scene);
    ASSERT_EQ(datagrams.size(), size) << scene;
    for (const std::string& datagram : datagrams) {
      EXPECT_EQ(classifyDatagram(ExactBytes(datagram).span()),
                datagram == datagrams.back() ? DatagramKind::EndOfDump : DatagramKind::Addresses);
    }
    EXPECT_EQ(collect({datagrams.back()}, true, nameInScene), AddressDump{}) << scene;
  }
}

TEST(RecordedDumps, AFreshMachineHasTwoAddressesAndLoopbackWithHostScope) {
  AddressDump fresh{{"eth0", {.primaryIPv4 = {{"192.0.2.1", 24}}, .ipv6 = {{"2001:db8::1", 64}}}}};
  EXPECT_EQ(replay("fresh"), fresh);
  fresh["lo"] = {.primaryIPv4 = {{"127.0.0.1", 8}}, .ipv6 = {{"::1", 128}}};
  EXPECT_EQ(replay("fresh", true), fresh);
}

// The kernel has more, which is ignored: addresses of link and host scope, a second address with
// the label eth0:1, temporary and limited IPv6 addresses, and "::2", the only address of eth2.
const AddressDump varied{
    {"eth0",
     {.aliases = {{"1", {"192.0.2.11", 24}},
                  {"10", {"192.0.2.10", 24}},
                  {"2", {"192.0.2.2", 24}},
                  {"web:2", {"192.0.2.12", 24}}},
      .primaryIPv4 = {{"192.0.2.1", 24}, {"198.51.100.1", 32}, {"203.0.113.1", 0}},
      .ipv6 = {{"::3", 128}, {"2001:db8:1::1", 128}, {"2001:db8:2::1", 64}, {"2001:db8::1", 64}}}},
    {"eth1",
     {.aliases = {{"1", {"10.1.0.1", 16}}, {"10", {"10.1.0.10", 16}}, {"2", {"10.1.0.2", 16}}}}},
    {"lo", {.primaryIPv4 = {{"10.9.9.9", 32}}}},
};

TEST(RecordedDumps, AVariedMachineHasItsManagedAddresses) {
  EXPECT_EQ(replay("varied"), varied);
}

TEST(RecordedDumps, AVariedMachineHasMoreWithHostScope) {
  AddressDump expected = varied;
  auto& eth0 = expected.at("eth0").primaryIPv4;
  eth0.insert(eth0.begin(), {"10.0.0.2", 32});
  auto& loopback = expected.at("lo");
  loopback.primaryIPv4.insert(loopback.primaryIPv4.begin(), {"127.0.0.1", 8});
  loopback.ipv6 = {{"::1", 128}};
  EXPECT_EQ(replay("varied", true), expected);
}

TEST(RecordedDumps, ManyAddressesFillSeveralDatagrams) {
  InterfaceAddresses eth0{.primaryIPv4 = {{"192.0.2.1", 24}}};
  for (int n = 0; n < 150; ++n) {
    const std::string address = "10.2." + std::to_string(n / 100) + '.' + std::to_string(n % 100);
    eth0.primaryIPv4.push_back({address, 32});
  }
  std::array<char, 32> address{};
  for (int n = 50; n > 0; --n) {  // the kernel sends the latest first
    std::snprintf(address.data(), address.size(), "2001:db8:3::%x", n);
    eth0.ipv6.push_back({address.data(), 128});
  }
  eth0.ipv6.push_back({"2001:db8::1", 64});
  EXPECT_EQ(replay("many"), (AddressDump{{"eth0", eth0}}));
}

TEST(RecordedDumps, TruncatedDumpsYieldTheirWholeMessages) {
  for (const std::string scene : {"fresh", "varied"}) {
    for (const std::string& datagram : recordedDatagrams(scene)) {
      AddressDump expected;
      std::size_t begin = 0;
      while (begin < datagram.size()) {
        nlmsghdr header{};
        std::memcpy(&header, datagram.data() + begin, sizeof(header));
        for (std::size_t size = begin; size < begin + header.nlmsg_len; ++size) {
          ASSERT_EQ(collect({datagram.substr(0, size)}, true, nameInScene), expected)
              << scene << " cut at " << size;
        }
        const ExactBytes message(datagram.substr(begin, header.nlmsg_len));
        AddressCollector(expected, true, nameInScene).collect(message.span());
        begin += header.nlmsg_len;
      }
      EXPECT_EQ(collect({datagram}, true, nameInScene), expected) << scene;
      EXPECT_EQ(begin, datagram.size());
    }
  }
}

}  // namespace
}  // namespace addrtool::testing
