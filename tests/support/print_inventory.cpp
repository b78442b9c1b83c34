// Calls the functions of the listing that no option of addrtool calls.
#include <cstdio>
#include <exception>
#include <string_view>

#include "inventory/listing.h"

int main(int /*argc*/, char** argv) {
  try {
    if (argv[1] == std::string_view("main-address")) addrtool::printMainAddress();
    if (argv[1] == std::string_view("interface-names")) addrtool::printInterfaceNames();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
