// Adds an address to an interface: first on the running system, then in the files that the network
// service reads when it restarts. A failure does not undo earlier steps.
#pragma once

#include <string>

#include "inventory/address_dump.h"

namespace addrtool {

/// Adds the address. A text with a colon is an IPv6 address, any other text an IPv4 address.
/// `netmaskOrPrefix` is a decimal prefix length for IPv6 and a dotted netmask for IPv4.
///
/// Raises std::runtime_error before anything is changed: `netmaskOrPrefix` followed by ": cannot
/// convert to int" (IPv6) or ": cannot convert to netmask" (IPv4). Also raises what the two
/// functions below raise.
void addAddress(const std::string& interface, const std::string& address,
                const std::string& netmaskOrPrefix);

/// Adds the record as a new alias of the interface, with the lowest free alias number, and writes
/// the alias file. The interface must have an address already.
///
/// Raises std::runtime_error before anything is changed: the interface followed by ": no such
/// network interface." if it has no address, or by ": no free alias number." if every number is
/// taken or makes the label too long for the kernel. Also raises what readKernelAddresses,
/// bringUpAlias and writeAliasFile raise.
void addIPv4Address(const std::string& interface, const AddressRecord& record);

/// Adds the record to the interface itself and to the list in the interface's file. Checks nothing
/// before the command runs. Raises what runIfconfig raises.
void addIPv6Address(const std::string& interface, const AddressRecord& record);

/// Returns the lowest number from 1 up that is not a key of the aliases, in decimal. Returns an
/// empty text when all 65,535 are taken. Keys that are not numbers are ignored.
std::string lowestFreeAliasNumber(const AliasMap& aliases);

}  // namespace addrtool
