// The pure parts by themselves: one datagram's worth of addresses, and the edits of IPv6 lists.
#include <benchmark/benchmark.h>
#include <linux/if_addr.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "inventory/address_messages.h"
#include "persist/ipv6_list.h"

namespace addrtool {
namespace {

using Bytes = std::vector<std::byte>;

void append(Bytes& bytes, const void* data, std::size_t size) {
  const auto* begin = static_cast<const std::byte*>(data);
  bytes.insert(bytes.end(), begin, begin + size);
  bytes.resize((bytes.size() + 3) & ~std::size_t{3});
}

void appendAttribute(Bytes& bytes, unsigned short type, const void* data, std::size_t size) {
  const rtattr header{static_cast<unsigned short>(sizeof(rtattr) + size), type};
  append(bytes, &header, sizeof(header));
  append(bytes, data, size);
}

// As the kernel describes the alias eth0:<number>.
void appendAlias(Bytes& datagram, unsigned number) {
  Bytes attributes;
  const auto low = static_cast<unsigned char>(number % 250 + 1);
  const std::array<unsigned char, 4> address{10, 0, static_cast<unsigned char>(number / 250), low};
  const std::string label = "eth0:" + std::to_string(number);
  const ifa_cacheinfo lifetimes{};
  appendAttribute(attributes, IFA_ADDRESS, address.data(), address.size());
  appendAttribute(attributes, IFA_LOCAL, address.data(), address.size());
  appendAttribute(attributes, IFA_LABEL, label.c_str(), label.size() + 1);
  appendAttribute(attributes, IFA_CACHEINFO, &lifetimes, sizeof(lifetimes));

  ifaddrmsg message{};
  message.ifa_family = AF_INET;
  message.ifa_prefixlen = 24;
  message.ifa_index = 2;
  nlmsghdr header{};
  header.nlmsg_len =
      static_cast<std::uint32_t>(sizeof(header) + sizeof(message) + attributes.size());
  header.nlmsg_type = RTM_NEWADDR;
  append(datagram, &header, sizeof(header));
  append(datagram, &message, sizeof(message));
  append(datagram, attributes.data(), attributes.size());
}

void collectDatagrams(benchmark::State& state) {
  constexpr unsigned perDatagram = 50;
  const auto count = static_cast<unsigned>(state.range(0));
  std::vector<Bytes> datagrams((count + perDatagram - 1) / perDatagram);
  for (unsigned i = 0; i < count; ++i) appendAlias(datagrams[i / perDatagram], i + 1);

  for ([[maybe_unused]] auto iteration : state) {
    AddressDump dump;
    AddressCollector collector(dump, false, [](unsigned) { return std::string("eth0"); });
    for (const Bytes& datagram : datagrams) collector.collect(datagram);
    if (dump["eth0"].aliases.size() != count) std::abort();
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(collectDatagrams)->RangeMultiplier(10)->Range(1, 10'000);

std::string interfaceFile(unsigned secondaries) {
  std::string text = "DEVICE=eth0\nONBOOT=yes\nIPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=";
  for (unsigned i = 0; i < secondaries; ++i) {
    text += (i == 0 ? '"' : ' ') + ("2001:db8::" + std::to_string(i + 2) + "/64");
  }
  return text + "\"\n";
}

using Edit = int (*)(std::FILE* oldFile, std::FILE* newFile, void* context);

void editList(benchmark::State& state, Edit edit, const char* address) {
  std::string text = interfaceFile(static_cast<unsigned>(state.range(0)));
  for ([[maybe_unused]] auto iteration : state) {
    LabelledAddress context{"eth0", {address, 64}};
    std::string result(text.size() + 256, '\0');
    std::FILE* oldFile = fmemopen(text.data(), text.size(), "r");
    std::FILE* newFile = fmemopen(result.data(), result.size(), "w");
    if (edit(oldFile, newFile, &context) != 0) std::abort();
    std::fclose(oldFile);
    std::fclose(newFile);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(editList, add, copyWithIPv6, "2001:db8::ffff")->Arg(1)->Arg(10)->Arg(100);
BENCHMARK_CAPTURE(editList, remove, copyWithoutIPv6, "2001:db8::2")->Arg(1)->Arg(10)->Arg(100);

}  // namespace
}  // namespace addrtool
