// Queues the actions that the command line asks for, checks the operands, runs the queues, and
// turns a failure into a message and an exit status.
#include <getopt.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <queue>
#include <string>
#include <utility>

#include "changes/add_address.h"
#include "changes/delete_address.h"
#include "cli/usage.h"
#include "container/container_check.h"
#include "inventory/listing.h"
#include "runtime/messages.h"
#include "runtime/runtime_config.h"

namespace addrtool {
namespace {

using PlainAction = void (*)();
using ArgumentAction = void (*)(const std::string& argument);

// The actions that the command line asks for.
struct Request {
  std::queue<PlainAction> plainActions;
  std::queue<std::pair<ArgumentAction, std::string>> argumentActions;
  std::string addInterface;  // empty: nothing to add

  bool isEmpty() const {
    return plainActions.empty() && argumentActions.empty() && addInterface.empty();
  }
};

Request parseOptions(int argc, char** argv) {
  // Each option is in the table and in the switch, and in the short options unless it is long-only.
  // NOLINTBEGIN(modernize-use-designated-initializers): the members are columns
  static constexpr auto longOptions = std::to_array<option>({
      {"list", no_argument, nullptr, 'l'},
      {"add", required_argument, nullptr, 'a'},
      {"del", required_argument, nullptr, 'd'},
      {"main", no_argument, nullptr, 'm'},
      {"help", no_argument, nullptr, 'h'},
      {"qv-assigned-ip", required_argument, nullptr, 'v'},
      {nullptr, 0, nullptr, 0},
  });
  // NOLINTEND(modernize-use-designated-initializers)
  Request request;
  int letter = 0;
  while ((letter = getopt_long(argc, argv, "lhd:v:a:", longOptions.data(), nullptr)) != -1) {
    switch (letter) {
      case 'l':
        request.plainActions.push(listAddresses);
        break;
      case 'a':
        request.addInterface = optarg;
        break;
      case 'd':
        request.argumentActions.emplace(deleteAddress, optarg);
        break;
      case 'm':  // accepted, but does nothing
        break;
      case 'h':
        request.plainActions.push(printUsage);
        break;
      case 'v':
        request.argumentActions.emplace(printContainerCheck, optarg);
        break;
      default:  // '?': a bad option, which getopt has reported; the other options still count
        break;
    }
  }
  return request;
}

// Only an add takes operands: the address and its netmask or prefix length.
constexpr int addOperands = 2;

void checkOperands(const Request& request, int argc, char** argv) {
  if (request.addInterface.empty()) {
    checkLeftoverArguments(argc, optind, argv);
  } else if (argc - optind != addOperands) {
    printUsage();
  }
}

// Runs the actions without an argument, then those with one, then the add. Within each kind, they
// run in the order of the command line.
void runActions(Request& request, char** operands) {
  for (; !request.plainActions.empty(); request.plainActions.pop()) {
    request.plainActions.front()();
  }
  for (; !request.argumentActions.empty(); request.argumentActions.pop()) {
    const auto& [action, argument] = request.argumentActions.front();
    action(argument);
  }
  if (!request.addInterface.empty()) {
    addAddress(request.addInterface, operands[0], operands[1]);
  }
}

int run(int argc, char** argv) {
  Request request = parseOptions(argc, argv);
  if (request.isEmpty()) printUsage();
  checkOperands(request, argc, argv);
  static_cast<void>(loadRuntimeConfiguration());  // required, although no action uses its values
  try {
    runActions(request, argv + optind);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return exitFailure;
  }
  return exitDone;
}

}  // namespace
}  // namespace addrtool

int main(int argc, char** argv) {
  std::exit(addrtool::run(argc, argv));
}
