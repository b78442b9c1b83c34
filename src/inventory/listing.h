// Prints the inventory on standard output, with one write(2) for each line. This bypasses stdio:
// text still in stdout's buffer appears later. If standard output is non-blocking and full, the
// functions wait. After any other write error they stop printing and raise nothing. The program
// itself calls only listAddresses.
#pragma once

#include <string>

namespace addrtool {

/// Prints "<ipaddr> <netmask> <interface> <is-primary-ip>" for every address: the netmask dotted
/// for IPv4, the prefix length in decimal for IPv6, the flag 1 for an interface's first IPv4
/// address and 0 for all others. Raises what readKernelAddresses raises, with nothing printed.
void listAddresses();

/// Returns the first IPv4 address of the first interface in name order, or its first IPv6 address
/// if it has no IPv4 address. Raises std::runtime_error "There are no network interfaces!" when the
/// machine has no managed address, and what readKernelAddresses raises.
std::string mainAddress();

/// Prints mainAddress() on a line. Raises what mainAddress() raises, with nothing printed.
void printMainAddress();

/// Prints the interface names, each up to its first colon, one per line, sorted by bytes and
/// without duplicates. Raises what readKernelAddresses raises.
void printInterfaceNames();

}  // namespace addrtool
