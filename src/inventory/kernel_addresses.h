// Reads the kernel's address table over an rtnetlink socket. Nothing is cached: each call reads the
// whole table again.
#pragma once

#include "inventory/address_dump.h"

namespace addrtool {

/// Requests one RTM_GETADDR dump (rtnetlink(7)) and adds the managed addresses to `dump`, which
/// callers pass empty. With `includeHostScope`, loopback addresses are added too.
///
/// Raises std::runtime_error with one of these texts. A text that ends in ": " is followed by
/// strerror(errno).
///   "Fail to open netlink socket: "
///   "Can not send RTM_GETADDR request: "
///   "Can not get RTM_GETADDR request response: "
///   "Incorrect format of RTM_GETADDR request response"
///   "Fail to detect interface name by index: "
/// The socket is closed in every case but the last.
void readKernelAddresses(AddressDump& dump, bool includeHostScope);

}  // namespace addrtool
