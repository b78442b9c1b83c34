// Queues the actions that the command line asks for, checks the operands, runs the queues, and
// turns a failure into a message and an exit status.
#include <getopt.h>

#include <algorithm>
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

template <PlainAction action>
void queuePlain(Request& request) {
  request.plainActions.push(action);
}

template <ArgumentAction action>
void queueWithArgument(Request& request) {
  request.argumentActions.emplace(action, optarg);
}

void setAddInterface(Request& request) {
  request.addInterface = optarg;
}

void ignore(Request& /*request*/) {}

struct Option {
  const char* longName;
  char letter;   // zero: there is only the long form
  int argument;  // no_argument or required_argument
  void (*apply)(Request& request);
};

// The one place that lists the options; the usage text describes them.
constexpr auto options = std::to_array<Option>({
    {"list", 'l', no_argument, queuePlain<listAddresses>},
    {"add", 'a', required_argument, setAddInterface},
    {"del", 'd', required_argument, queueWithArgument<deleteAddress>},
    {"main", '\0', no_argument, ignore},
    {"help", 'h', no_argument, queuePlain<printUsage>},
    {"qv-assigned-ip", 'v', required_argument, queueWithArgument<printContainerCheck>},
});

constexpr auto longOptions = [] {
  std::array<option, options.size() + 1> rows{};  // a row of zeros ends the table
  std::ranges::transform(options, rows.begin(), [](const Option& known) {
    return option{known.longName, known.argument, nullptr, known.letter};
  });
  return rows;
}();

std::string shortOptions() {
  std::string text;
  for (const Option& known : options) {
    if (known.letter == '\0') continue;
    text += known.letter;
    if (known.argument == required_argument) text += ':';
  }
  return text;
}

Request parseOptions(int argc, char** argv) {
  const std::string letters = shortOptions();
  Request request;
  int letter = 0;
  while ((letter = getopt_long(argc, argv, letters.c_str(), longOptions.data(), nullptr)) != -1) {
    // A bad option gives '?', which is not in the table. getopt has already reported it, and the
    // other options still count.
    const auto* found = std::ranges::find(options, letter, &Option::letter);
    if (found != options.end()) found->apply(request);
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
