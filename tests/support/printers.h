// Prints addresses in the messages of failed tests.
#pragma once

#include <ostream>

#include "inventory/address_dump.h"

namespace addrtool {

inline void PrintTo(const AddressRecord& record, std::ostream* stream) {
  *stream << record.address << '/' << record.prefixLength;
}

inline void PrintTo(const InterfaceAddresses& addresses, std::ostream* stream) {
  for (const AddressRecord& record : addresses.primaryIPv4) {
    PrintTo(record, &(*stream << " plain "));
  }
  for (const auto& [suffix, record] : addresses.aliases) {
    PrintTo(record, &(*stream << " :" << suffix << ' '));
  }
  for (const AddressRecord& record : addresses.ipv6) PrintTo(record, &(*stream << ' '));
}

}  // namespace addrtool
