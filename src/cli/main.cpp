// Parses the command line into queues of actions, checks it, runs the queues, and turns a failure
// into a message and an exit status. What the actions do is not known here.
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

constexpr std::array<std::pair<char, PlainAction>, 2> plainActionTable{{
    {'l', listAddresses},
    {'h', printUsage},
}};

constexpr std::array<std::pair<char, ArgumentAction>, 2> argumentActionTable{{
    {'d', deleteAddress},
    {'v', printContainerCheck},
}};

// What the command line asks for.
struct Request {
  std::queue<PlainAction> plainActions;
  std::queue<std::pair<ArgumentAction, std::string>> argumentActions;
  std::string addInterface;  // empty: nothing to add

  bool isEmpty() const {
    return plainActions.empty() && argumentActions.empty() && addInterface.empty();
  }
};

// Letters that match nothing (m of the ignored --main, ? of a bad option) are dropped: getopt has
// complained already, and what else was asked for is still done.
void queueOption(Request& request, int letter) {
  for (const auto& [key, action] : plainActionTable) {
    if (key == letter) request.plainActions.push(action);
  }
  for (const auto& [key, action] : argumentActionTable) {
    if (key == letter) request.argumentActions.emplace(action, optarg);
  }
  if (letter == 'a') request.addInterface = optarg;
}

Request parseOptions(int argc, char** argv) {
  static constexpr std::array<option, 7> longOptions{{
      {"list", no_argument, nullptr, 'l'},
      {"add", required_argument, nullptr, 'a'},
      {"del", required_argument, nullptr, 'd'},
      {"main", no_argument, nullptr, 'm'},
      {"help", no_argument, nullptr, 'h'},
      {"qv-assigned-ip", required_argument, nullptr, 'v'},
      {},  // a row of zeros ends the table
  }};
  Request request;
  int letter = 0;
  while ((letter = getopt_long(argc, argv, "lhd:v:a:", longOptions.data(), nullptr)) != -1) {
    queueOption(request, letter);
  }
  return request;
}

// An add takes two operands, the address and its netmask or prefix length; nothing else takes any.
void checkOperands(const Request& request, int argc, char** argv) {
  if (request.addInterface.empty()) {
    checkLeftoverArguments(argc, optind, argv);
  } else if (argc - optind != 2) {
    printUsage();
  }
}

// The order is by kind, whatever the order on the command line: the add comes last.
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

}  // namespace
}  // namespace addrtool

int main(int argc, char** argv) {
  using namespace addrtool;
  Request request = parseOptions(argc, argv);
  if (request.isEmpty()) printUsage();
  checkOperands(request, argc, argv);
  static_cast<void>(loadRuntimeConfiguration());  // no action needs a value of it
  int status = exitDone;
  try {
    runActions(request, argv + optind);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    status = exitFailure;
  }
  std::exit(status);
}
