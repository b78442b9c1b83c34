// The IPv6 addresses of an interface, as its configuration file holds them: IPV6ADDR, the first
// one, and IPV6ADDR_SECONDARIES, a list of the others separated by blanks. An edit touches the
// lines of these keys and copies all others byte for byte.
//
// The readers of these files are shells, but the lists are not read as a shell reads them: the
// closing quote of a list stays part of its last entry, whose prefix length is then read as 0.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "inventory/address_record.h"
#include "persist/alias_file.h"

namespace addrtool {

/// Appends the "address/length" entries in the value of the line ("KEY=value"). A length that is
/// no unsigned 16-bit number counts as 0. Raises std::runtime_error, the entry followed by
/// ": cannot parse IPv6 address", for one without exactly one slash; those before it are appended.
void parseIPv6List(const std::string& line, std::vector<AddressRecord>& entries);

/// Puts the address in front of the list in the file of the interface that the label names.
/// IPV6ADDR is not looked at, nor whether the address is listed already. Any key that begins with
/// IPV6ADDR_SECONDARIES is taken for the list, and a second list repeats what the first became. A
/// missing file stays missing without a word; a list that cannot be parsed is reported and the file
/// stays as it was.
void addIPv6ToInterfaceFile(LabelledAddress added);

/// Takes the address, in whatever form it is written, out of the file of the interface that the
/// label names. Where it was IPV6ADDR, the first of the list takes its place; when the list is
/// empty, that is reported and the file stays as it was. Else as addIPv6ToInterfaceFile. The
/// prefix length of the record is not looked at.
void removeIPv6FromInterfaceFile(LabelledAddress removed);

/// The FileWriters behind the two edits, over any streams; `context` is the LabelledAddress, and
/// there must be an old file. They report what is wrong with the old file through reportMessage,
/// and return -1 then or when it cannot be read.
int copyWithIPv6(std::FILE* oldFile, std::FILE* newFile, void* context);
int copyWithoutIPv6(std::FILE* oldFile, std::FILE* newFile, void* context);

}  // namespace addrtool
