// The one source of truth about which addresses the machine has right now: the kernel's table,
// read afresh over an rtnetlink socket each time it is needed.
#pragma once

#include "inventory/address_dump.h"

namespace addrtool {

/// Asks the kernel for every address (one RTM_GETADDR dump, rtnetlink(7)) and adds the managed
/// ones to `dump`, which callers pass empty. `includeHostScope` takes loopback addresses in too.
///
/// Raises std::runtime_error with one of these texts, the first three and the last followed by
/// strerror(errno):
///   "Fail to open netlink socket: "
///   "Can not send RTM_GETADDR request: "
///   "Can not get RTM_GETADDR request response: "
///   "Incorrect format of RTM_GETADDR request response"
///   "Fail to detect interface name by index: "
/// The socket is closed on every way out but the last.
void readKernelAddresses(AddressDump& dump, bool includeHostScope);

}  // namespace addrtool
