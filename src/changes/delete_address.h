// Takes an address off whichever interface carries it: off the running system first, then out of
// the files. An interface's main IPv4 addresses and its last IPv6 address are never given up. What
// was done before a failure stays done.
#pragma once

#include <string>

#include "inventory/address_dump.h"

namespace addrtool {

/// Deletes the address, an IPv6 address when its text has a colon, else an IPv4 address. Raises
/// what the two functions below raise.
void deleteAddress(const std::string& address);

/// Deletes the first alias, interfaces in name order, whose text is the address byte for byte,
/// and its file; then brings back the aliases that vanished with it.
///
/// Raises std::runtime_error, before anything is changed: the address followed by ": cannot delete
/// main IP on interface" or ": not configured."; and what readKernelAddresses and takeDownAlias
/// raise. The latter refuses a label that is too long, as it is after a renaming of the interface.
void deleteIPv4Address(const std::string& address);

/// Deletes the first IPv6 address, interfaces in name order, that has the same value, however it
/// is written, and takes it out of the list in the interface's file.
///
/// Raises std::runtime_error, before anything is changed: the address followed by ": cannot remove
/// last address from " and the interface, or by ": not configured" (without a full stop, unlike
/// IPv4); and what readKernelAddresses and runIfconfig raise.
void deleteIPv6Address(const std::string& address);

/// Brings back those aliases of the snapshot, taken before the alias `deletedSuffix` went, that
/// are gone from the kernel's table: it drops the others of a subnet with the first one. An alias
/// counts as present by its suffix alone. Stops at the first failure; raises what
/// readKernelAddresses and bringUpAlias raise.
void restoreAliases(const std::string& interface, const AliasMap& snapshot,
                    const std::string& deletedSuffix);

}  // namespace addrtool
