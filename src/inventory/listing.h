// What the panel reads back: the inventory as text on standard output, with one write(2) for each
// line. This bypasses stdio: text still in stdout's buffer appears later. A full non-blocking
// output is waited for. After any other write error nothing more is printed, and nothing is raised.
#pragma once

#include <string>

namespace addrtool {

/// Prints "<ipaddr> <netmask> <interface> <is-primary-ip>" for every address: the netmask dotted
/// for IPv4, the prefix length in decimal for IPv6, the flag 1 for an interface's first IPv4
/// address and 0 for all others. Raises what readKernelAddresses raises, before the first line.
void listAddresses();

/// The first address of the first interface in name order: its first IPv4 address, or its first
/// IPv6 address when it has no other. Raises std::runtime_error "There are no network
/// interfaces!" when the machine has no managed address, and what readKernelAddresses raises.
std::string mainAddress();

/// Prints mainAddress() on a line. Raises what mainAddress() does, with nothing printed.
void printMainAddress();

/// Prints each distinct interface name, up to its first colon, on a line, in the order of the
/// bytes. Raises what readKernelAddresses raises.
void printInterfaceNames();

}  // namespace addrtool
