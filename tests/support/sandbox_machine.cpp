#include "support/sandbox_machine.h"

#include <sched.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace addrtool::testing {
namespace {

// These files are in the /etc of the sandbox and vanish with it.
constexpr const char* recorder = "/etc/recording-ifconfig";
constexpr const char* recording = "/etc/recorded-commands";

Lines addrtoolCommand(const Lines& arguments) {
  Lines command{"addrtool"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

NetworkFile readNetworkFile(const fs::path& path) {
  struct stat status{};
  if (lstat(path.c_str(), &status) != 0) throw std::runtime_error(path.string() + ": no status");
  return {S_ISREG(status.st_mode) ? readFile(path) : "", status.st_mode, status.st_uid,
          status.st_gid};
}

// Ends the process before its first test changes a real machine. Listing the tests is not a run.
// Only the mounts of a sandbox have this procfs, and only its processes find themselves there.
class RequireSandbox : public ::testing::Environment {
  void SetUp() override {
    if (fs::exists("/proc/.sandbox/proc/self")) return;
    std::fputs(
        "These tests change addresses and system files, so they run only in a sandbox:\n"
        "  ADDRTOOL_BIN_DIR=build/dev scripts/sandbox build/dev/system_tests\n",
        stderr);
    std::exit(1);
  }
};

[[maybe_unused]] const auto* const requireSandbox =
    ::testing::AddGlobalTestEnvironment(new RequireSandbox);

}  // namespace

fs::path interfaceFile(const std::string& label) {
  return networkScripts / ("ifcfg-" + label);
}

void prepare(const std::string& script) {
  const Outcome outcome = runShell("set -e\n" + script);
  if (outcome.exitStatus != 0) throw std::runtime_error(script + ": " + outcome.err);
}

std::string aliasText(const std::string& label, const std::string& address,
                      const std::string& netmask) {
  return "DEVICE=\"" + label + "\"\nIPADDR=\"" + address + "\"\nNETMASK=\"" + netmask + "\"\n";
}

void ip(const std::string& commands) {
  writeFile("/etc/ip-batch", commands + '\n');
  const Outcome outcome = runCommand({"ip", "-batch", "/etc/ip-batch"});
  ASSERT_EQ(outcome.exitStatus, 0) << outcome.err << "\nafter: " << commands;
}

Lines addManyAddresses(int count, bool withLabels) {
  Lines addresses;
  Lines lines;
  for (int n = 1; n <= count; ++n) {
    addresses.push_back("10." + std::to_string(n / 250) + ".0." + std::to_string(n % 250));
    const std::string label = withLabels ? "eth0:" + std::to_string(n) : "eth0";
    lines.push_back(label + ' ' + addresses.back() + "/32");
  }
  addAddresses(lines);
  return addresses;
}

void addAddresses(const Lines& addresses) {
  std::string commands;
  for (const std::string& line : addresses) {
    const std::size_t blank = line.find(' ');
    const std::string label = line.substr(0, blank);
    const std::size_t colon = label.find(':');
    commands += "address add" + line.substr(blank) + " dev " + label.substr(0, colon) +
                (colon == std::string::npos ? "" : " label " + label) + '\n';
  }
  ip(commands);
}

void addInterface(const std::string& name, const Lines& addresses) {
  ip("link add " + name + " type veth\nlink set " + name + " up");
  for (const std::string& address : addresses) addAddresses({name + ' ' + address});
  writeFile(interfaceFile(name), "DEVICE=" + name + "\n");
}

void resetMachine() {
  static const std::string interfaceText = readFile(interfaceFile("eth0"));
  fs::remove_all(networkScripts);
  fs::create_directory(networkScripts);
  writeFile(interfaceFile("eth0"), interfaceText);
  ASSERT_EQ(unshare(CLONE_NEWNET), 0);
  prepare("echo 0 | tee /proc/sys/net/ipv4/conf/*/promote_secondaries");
  ip(R"(link set lo up
        link add eth0 type veth peer name veth-peer
        link set veth-peer addrgenmode none up
        link set eth0 up
        address add 192.0.2.1/24 dev eth0
        address add 2001:db8::1/64 dev eth0 nodad)");
}

Outcome runAddrtool(const Lines& arguments) {
  return runCommand(addrtoolCommand(arguments));
}

void expectSilentSuccess(const Lines& arguments) {
  EXPECT_EQ(runAddrtool(arguments), silentSuccess) << ::testing::PrintToString(arguments);
}

void add(const std::string& address, const std::string& netmaskOrPrefix) {
  expectSilentSuccess({"-a", "eth0", address, netmaskOrPrefix});
}

// A line of IPv4 ends in the label and a backslash: 3: eth0    inet 192.0.2.10/24 ... eth0:1\ ...
Lines kernelAddresses() {
  const std::string output = runCommand({"ip", "-o", "address", "show", "scope", "global"}).out;
  Lines addresses;
  for (const auto& match : findAll(output, R"(inet ([^ ]+) [^\\]* ([^ \\]+)\\)")) {
    addresses.push_back(match[2] + ' ' + match[1]);
  }
  for (const auto& match : findAll(output, "([^ ]+) +inet6 ([^ ]+)")) {
    addresses.push_back(match[1] + ' ' + match[2]);
  }
  std::ranges::sort(addresses);
  return addresses;
}

void expectAdded(Lines added) {
  added.insert(added.end(), {"eth0 192.0.2.1/24", "eth0 2001:db8::1/64"});
  std::ranges::sort(added);
  EXPECT_EQ(kernelAddresses(), added);
}

void PrintTo(const NetworkFile& file, std::ostream* stream) {
  *stream << "mode 0" << std::oct << file.mode << std::dec << ", owner " << file.owner << ':'
          << file.group << '\n'
          << file.contents << "---";
}

NetworkFiles networkFiles() {
  NetworkFiles files;
  if (!fs::exists(networkScripts)) return files;
  for (const std::string& name : listDirectory(networkScripts)) {
    files[name] = readNetworkFile(networkScripts / name);
  }
  return files;
}

void PrintTo(const MachineState& state, std::ostream* stream) {
  *stream << ::testing::PrintToString(state.addresses) << '\n'
          << ::testing::PrintToString(state.files);
}

Lines valuesInShell(const std::string& label, const Lines& variables) {
  std::string script = ". '" + interfaceFile(label).string() + "'\n";
  for (const std::string& variable : variables) script += "printf '%s\\n' \"$" + variable + "\"\n";
  Lines values;
  for (const auto& line : findAll(runShell(script).out, "([^\n]*)\n")) values.push_back(line[1]);
  return values;
}

void recordIfconfig(const std::string& script) {
  const std::string record = R"({ printf '<%s>' "$0" "$@"; printf '\0'; } >>)";
  writeFile(recorder, "#!/bin/sh\n" + record + recording + '\n' + script + '\n');
  fs::permissions(recorder, fs::perms::owner_all);
  fs::remove(recording);
  prepare("mount --bind " + std::string(recorder) + " /sbin/ifconfig");
}

Lines recordedCommands() {
  Lines commands;
  if (!fs::exists(recording)) return commands;
  std::istringstream records(readFile(recording));
  for (std::string command; std::getline(records, command, '\0');) commands.push_back(command);
  return commands;
}

void expectRefused(const Lines& arguments, const std::string& message,
                   const std::string& injection) {
  const MachineState before;
  const Lines command = addrtoolCommand(arguments);
  const Outcome outcome =
      injection.empty() ? runCommand(command) : traceCommand({injection}, command).outcome;
  EXPECT_EQ(outcome, failure(message)) << ::testing::PrintToString(arguments);
  EXPECT_EQ(MachineState(), before) << ::testing::PrintToString(arguments);
}

void expectCommandLines(const Lines& arguments, const Lines& commandLines, const Outcome& outcome) {
  const Trace trace = traceCommand({"-f", "-s4096", "trace=execve"}, addrtoolCommand(arguments));
  Lines traced;
  for (const std::string& call : trace.calls) {
    for (const auto& match :
         findAll(call, R"re(execve\("/bin/sh", \["sh", "-c", "(.*)"\], 0x)re")) {
      traced.push_back(match[1]);
    }
  }
  EXPECT_EQ(trace.outcome, outcome);
  EXPECT_EQ(traced, commandLines);
}

}  // namespace addrtool::testing
