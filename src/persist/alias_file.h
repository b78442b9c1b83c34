// The paths of the interface configuration files, and the files of IPv4 aliases. Each alias has a
// file of its own, which is written when the alias is added and removed when it is deleted.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "inventory/address_record.h"

namespace addrtool {

inline constexpr std::string_view networkScriptsDir = "/etc/sysconfig/network-scripts";

/// Returns the path of the file of an alias label ("eth0:1") or an interface ("eth0"). The label is
/// not checked.
std::string interfaceConfigPath(const std::string& label);

/// An address, and the label that names its configuration file.
struct LabelledAddress {
  std::string label;  ///< the alias label (IPv4) or the interface name (IPv6)
  AddressRecord address;
};

/// Writes the alias file. Replaces the content of an existing file but keeps its owner and mode.
/// Raises std::runtime_error, the path followed by ": " and the system's error text, when the file
/// cannot be replaced. A failed write is not detected.
void writeAliasFile(LabelledAddress alias);

/// Removes the alias file. Ignores a missing file and any other failure.
void removeAliasFile(const std::string& label);

/// The FileWriter of writeAliasFile. Ignores `oldFile`; `context` points to a LabelledAddress.
/// Writes three lines that a shell can source, and a fourth line on SuSE. Always returns 0.
int writeAliasContent(std::FILE* oldFile, std::FILE* newFile, void* context);

}  // namespace addrtool
