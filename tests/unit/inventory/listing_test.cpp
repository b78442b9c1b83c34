// The functions that no option of the program calls. Transcripts test the listing itself.
#include "inventory/listing.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "inventory/address_inventory.h"
#include "support/canned_machine.h"
#include "support/child_process.h"
#include "support/collect.h"
#include "support/failing_call.h"

namespace addrtool::testing {
namespace {

using Messages = std::vector<AddressMessage>;

AddressMessage on(std::uint32_t interface, AddressMessage message) {
  message.index = interface;
  return message;
}

const AddressMessage loopbackAddress{.prefixLength = 8,
                                     .scope = RT_SCOPE_HOST,
                                     .index = 3,
                                     .attributes = {addressAttribute("127.0.0.1")}};

std::string describe(const AddressInventory& inventory) {
  std::ostringstream text;
  for (const auto& [name, ipv4Records, ipv6Records] : inventory) {
    text << name << ':';
    for (const AddressRecord& record : ipv4Records) PrintTo(record, &(text << ' '));
    for (const AddressRecord& record : ipv6Records) PrintTo(record, &(text << ' '));
    text << '\n';
  }
  return text.str();
}

TEST(Inventory, HasInterfacesByNameAndPlainAddressesBeforeAliasesBySuffix) {
  const Messages messages{on(2, ipv6("2001:db8::9")),
                          ipv4("192.0.2.2", "eth0:2"),
                          ipv4("192.0.2.10", "eth0:10"),
                          loopbackAddress,
                          ipv4("192.0.2.9"),
                          ipv4("192.0.2.1"),
                          on(2, ipv4("10.0.0.1", "eth1:1"))};
  const std::string expected =
      "eth0: 192.0.2.9/24 192.0.2.1/24 192.0.2.10/24 192.0.2.2/24\n"
      "eth1: 10.0.0.1/24 2001:db8::9/64\n";
  CannedMachine machine(messages);
  EXPECT_EQ(describe(buildAddressInventory(false)), expected);
  machine.received = 0;
  EXPECT_EQ(describe(buildAddressInventory(true)), expected + "lo: 127.0.0.1/8\n");
}

void expectPrinted(const Outcome& outcome, const Messages& messages, void (*print)(),
                   const std::vector<std::string>& interfaces = {"eth0", "eth1", "lo"}) {
  CannedMachine machine(messages);
  machine.interfaces = interfaces;
  expectInChild(outcome, [print] {
    print();
    close(STDOUT_FILENO);  // text that is left in a buffer is lost
  });
}

TEST(MainAddress, IsTheFirstOfTheFirstInterfaceIPv4BeforeIPv6) {
  const std::vector<std::pair<std::string, Messages>> rows{
      {"192.0.2.9", {on(2, ipv4("10.0.0.1")), ipv6(), ipv4("192.0.2.9"), ipv4()}},
      {"192.0.2.10", {ipv4("192.0.2.2", "eth0:2"), ipv4("192.0.2.10", "eth0:10")}},
      {"2001:db8::1", {on(2, ipv4()), ipv6(), ipv6("2001:db8::2")}},
      {"10.0.0.1", {on(3, ipv4("10.0.0.1"))}},  // of lo
      {"10.0.0.1", {on(2, ipv4()), on(3, ipv4("10.0.0.1"))}}};
  const std::vector<std::string> interfaces{"eth0", "wlan0", "lo"};
  for (const auto& [address, messages] : rows) {
    expectPrinted(success(address + '\n'), messages, printMainAddress, interfaces);
    CannedMachine machine(messages);
    machine.interfaces = interfaces;
    EXPECT_EQ(mainAddress(), address);
  }
}

TEST(MainAddress, FailsWithoutAnInterface) {
  for (void (*const print)() : {printMainAddress, +[] { static_cast<void>(mainAddress()); }}) {
    const CannedMachine machine({loopbackAddress});
    expectInChild(silentSuccess,
                  [=] { EXPECT_EQ(failureOf(print), "There are no network interfaces!"); });
  }
}

TEST(InterfaceNames, AreSortedByBytesUpToTheFirstColonAndUnique) {
  const Messages messages{ipv4(), on(2, ipv4()), on(3, ipv6()), on(1, ipv4()), on(3, ipv4())};
  expectPrinted(success("eth1\nlo\n\xff\n"), messages, printInterfaceNames, {"\xff", "lo", "eth1"});
  expectPrinted(success("a\neth1\n"), messages, printInterfaceNames, {"eth1:2:3", "a", "eth1"});
  const std::vector<std::string> odd{"a@b.1", "a b%-", "a/+\"'~"};
  expectPrinted(success("a b%-\na/+\"'~\na@b.1\n"), messages, printInterfaceNames, odd);
  expectPrinted(success("eth0\n"), {ipv4()}, printInterfaceNames);
  expectPrinted(silentSuccess, {loopbackAddress}, printInterfaceNames);
}

TEST(InterfaceNames, StopAtANameThatCannotBeWritten) {
  const FailingCall failing(Call::Write, ENOSPC, 2, 2);
  expectPrinted(success("eth0\n"), {ipv4(), on(2, ipv4()), on(3, ipv4())}, printInterfaceNames);
}

}  // namespace
}  // namespace addrtool::testing
