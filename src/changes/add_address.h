// Puts an address on an interface: on the running system first, then in the files, so that it is
// there again when the network service restarts. What was done before a failure stays done.
#pragma once

#include <string>

#include "inventory/address_dump.h"

namespace addrtool {

/// Adds the address, an IPv6 address when its text has a colon, else an IPv4 address.
/// `netmaskOrPrefix` is a prefix length in decimal for IPv6, a dotted netmask for IPv4.
///
/// Raises std::runtime_error: the third operand followed by ": cannot convert to int" (IPv6) or
/// ": cannot convert to netmask" (IPv4) before anything is changed, and what the two functions
/// below raise.
void addAddress(const std::string& interface, const std::string& address,
                const std::string& netmaskOrPrefix);

/// Adds the record as a new alias of the interface, with the lowest free alias number, and writes
/// the alias's file. The interface must carry an address already.
///
/// Raises std::runtime_error, before anything is changed: the interface followed by ": no such
/// network interface." or ": no free alias number.", also when the label of every free number is
/// too long for the kernel; and what readKernelAddresses, runIfconfig and writeAliasFile raise.
void addIPv4Address(const std::string& interface, const AddressRecord& record);

/// Adds the record to the interface itself and to the list in the interface's file. Nothing is
/// checked before the command runs. Raises what runIfconfig raises.
void addIPv6Address(const std::string& interface, const AddressRecord& record);

/// The lowest number from 1 that is no key of the aliases, in decimal; empty when all 65,535 are
/// taken. Keys that are no numbers block none.
std::string lowestFreeAliasNumber(const AliasMap& aliases);

}  // namespace addrtool
