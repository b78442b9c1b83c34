// Where the distribution keeps its interface configuration, and the files of IPv4 aliases there:
// one small file for each alias, written when the alias is added and removed with it.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "inventory/address_record.h"

namespace addrtool {

inline constexpr std::string_view networkScriptsDir = "/etc/sysconfig/network-scripts";

/// The file of an alias label ("eth0:1") or of an interface ("eth0"). The label is taken as it is.
std::string interfaceConfigPath(const std::string& label);

/// An address and whose file it belongs in.
struct LabelledAddress {
  std::string label;  ///< the alias label (IPv4) or the interface name (IPv6)
  AddressRecord address;
};

/// Writes the alias's file anew; owner and mode of an earlier file of that name are kept, its
/// content is not. Raises std::runtime_error, the path followed by ": " and the system's error
/// text, when the file cannot be replaced. A disk found full at close is not noticed.
void writeAliasFile(LabelledAddress alias);

/// Removes the alias's file. One that is missing or cannot be removed is not worth a word.
void removeAliasFile(const std::string& label);

/// The FileWriter behind writeAliasFile, over any stream; `context` is a LabelledAddress, the old
/// file is not looked at. Three lines that a shell can source, and a fourth on SuSE, which is
/// looked for at that moment. Always returns 0.
int writeAliasContent(std::FILE* oldFile, std::FILE* newFile, void* context);

}  // namespace addrtool
