#include "changes/delete_address.h"

#include "support/canned_machine.h"
#include "support/child_process.h"
#include "support/collect.h"

namespace addrtool::testing {
namespace {

TEST(DeleteIPv6Address, TakesTheFirstOfTwoWithTheSameValue) {
  AddressMessage first = ipv6("2001:db8::5");
  first.prefixLength = 48;
  CannedMachine machine({ipv6(), first, ipv6("2001:db8::5")});
  machine.commandStatus = 0x0100;
  EXPECT_EQ(failureOf([] { deleteIPv6Address("2001:db8::5"); }),
            "/sbin/ifconfig eth0 del 2001:db8::5/48 exited with non-zero status 1");
}

}  // namespace
}  // namespace addrtool::testing
