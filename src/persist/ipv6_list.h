// Edits the IPv6 addresses in an interface's configuration file: IPV6ADDR holds the primary one,
// and IPV6ADDR_SECONDARIES a list of the others, separated by blanks. All other lines are copied
// byte for byte.
//
// The list is not parsed as a shell would: the closing quote stays part of the last entry, whose
// prefix length is then read as 0 (required).
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "inventory/address_record.h"
#include "persist/alias_file.h"

namespace addrtool {

/// Appends the "address/length" entries in the value of the line ("KEY=value") to `entries`. A
/// length that is not an unsigned 16-bit number counts as 0. Raises std::runtime_error, the entry
/// followed by ": cannot parse IPv6 address", at an entry without exactly one slash; earlier
/// entries stay appended.
void parseIPv6List(const std::string& line, std::vector<AddressRecord>& entries);

/// Inserts the address at the front of the list in the interface's file. The label is the
/// interface.
/// - Does not read IPV6ADDR, and does not check whether the address is listed already.
/// - Treats any key that starts with IPV6ADDR_SECONDARIES as the list.
/// - Ignores a missing file and any failure to replace it.
/// - Reports a list that cannot be parsed, and leaves the file unchanged.
void addIPv6ToInterfaceFile(LabelledAddress added);

/// Removes the address, in any written form, from the interface's file. The label is the interface;
/// the prefix length is ignored.
/// - If the address is IPV6ADDR, the first list entry replaces it. If there is no entry, reports
///   that and leaves the file unchanged.
/// - Handles a missing file, a failure and a bad list as addIPv6ToInterfaceFile does.
void removeIPv6FromInterfaceFile(LabelledAddress removed);

/// The FileWriters of the two edits. `context` points to a LabelledAddress; `oldFile` must not be
/// null. They return -1 if the old file cannot be read. If its lists cannot be edited, they report
/// the reason through reportMessage and return -1, too.
int copyWithIPv6(std::FILE* oldFile, std::FILE* newFile, void* context);
int copyWithoutIPv6(std::FILE* oldFile, std::FILE* newFile, void* context);

}  // namespace addrtool
