// Deletes an address from the interface that has it: first from the running system, then from the
// files. Refuses to delete a main IPv4 address or the last IPv6 address of an interface. A failure
// does not undo earlier steps.
#pragma once

#include <string>

#include "inventory/address_dump.h"

namespace addrtool {

/// Deletes the address. A text with a colon is an IPv6 address, any other text an IPv4 address.
/// Raises what the two functions below raise.
void deleteAddress(const std::string& address);

/// Deletes the first alias with exactly this address text, and its file. Then restores the aliases
/// that the kernel removed with it. Interfaces are searched in name order.
///
/// Raises std::runtime_error before anything is changed: the address followed by ": cannot delete
/// main IP on interface" or ": not configured.". Also raises what readKernelAddresses,
/// takeDownAlias (the label can be too long after a rename of the interface) and restoreAliases
/// raise.
void deleteIPv4Address(const std::string& address);

/// Deletes the first IPv6 address with the same value, whatever its written form, and removes it
/// from the list in the interface's file. Interfaces are searched in name order.
///
/// Raises std::runtime_error before anything is changed: the address followed by ": cannot remove
/// last address from " and the interface, or by ": not configured" (without the full stop of the
/// IPv4 message). Also raises what readKernelAddresses and removeIPv6FromRunningInterface raise.
void deleteIPv6Address(const std::string& address);

/// Restores the aliases of the snapshot that the kernel no longer has. When the kernel removes the
/// first address of a subnet, it also removes the others. The snapshot must be taken before the
/// alias `deletedSuffix` is deleted; that alias is not restored. Compares suffixes only, not
/// addresses. Stops at the first failure. Raises what readKernelAddresses and bringUpAlias raise.
void restoreAliases(const std::string& interface, const AliasMap& snapshot,
                    const std::string& deletedSuffix);

}  // namespace addrtool
