// Changes the running network. Only this file runs /sbin/ifconfig, and it contains the text of
// every command. Each function that runs a command raises what runIfconfig raises.
#pragma once

#include <string>

#include "inventory/address_record.h"

namespace addrtool {

/// Runs "/sbin/ifconfig" with the arguments through the shell and waits for its end. `arguments` is
/// shell text and is passed on unchanged: only the caller's quotes protect it from the shell. The
/// command writes to the program's own streams. There is no time limit.
///
/// Raises std::runtime_error: the whole command line followed by " killed with signal " and the
/// signal's number, or by " exited with non-zero status " and the status. Both describe the shell:
/// it exits with 127 when the command is missing, and with 128 plus the signal's number when a
/// command that it waits for is killed. A failure of system(3) itself counts as status 255.
void runIfconfig(const std::string& arguments);

/// Whether the alias label fits into the 15 bytes that the kernel keeps. /sbin/ifconfig truncates a
/// longer label without a warning, and then changes the alias or the interface that has the
/// truncated name.
bool kernelCanHoldLabel(const std::string& label);

/// Brings an alias up with its address and netmask. If the label does not fit, raises
/// std::runtime_error, the label followed by ": alias label too long.", before any command runs.
void bringUpAlias(const std::string& label, const AddressRecord& record);

/// Takes an alias down, which removes its address. Raises as bringUpAlias does.
void takeDownAlias(const std::string& label);

/// Adds an IPv6 address to the running interface. Nothing is quoted or checked.
void addIPv6ToRunningInterface(const std::string& interface, const AddressRecord& record);

/// Removes an IPv6 address from the running interface. Nothing is quoted.
void removeIPv6FromRunningInterface(const std::string& interface, const AddressRecord& record);

}  // namespace addrtool
