// What every system test needs: GoogleTest, files, child processes, traces, the sandbox's
// addresses, network scripts and /sbin/ifconfig, and addrtool run in it. A test program with this
// file refuses to run its tests anywhere else.
#pragma once

#include <sys/types.h>

#include <map>

#include "support/files.h"
#include "support/system_calls.h"

namespace addrtool::testing {

inline const fs::path networkScripts = "/etc/sysconfig/network-scripts";

/// The file of an alias label or of an interface.
fs::path interfaceFile(const std::string& label);

/// The contents of the file that the program writes for an alias.
std::string aliasText(const std::string& label, const std::string& address,
                      const std::string& netmask);

/// Runs a shell script; throws what it wrote if it fails.
void prepare(const std::string& script);

/// Runs the lines as commands of ip(8); each must succeed.
void ip(const std::string& commands);

/// Adds that many addresses of length 32 to eth0, with or without the labels eth0:1, eth0:2 ...
/// Returns the addresses in the order of the kernel.
Lines addManyAddresses(int count, bool withLabels = false);

/// Adds addresses with ip(8), so no file is written. They have the form of kernelAddresses(), and
/// may end in more words for ip(8): "eth0:1 10.0.0.1/32 scope host".
void addAddresses(const Lines& addresses);

/// Makes a second interface with these addresses, "10.0.0.1/24", and an interface file.
void addInterface(const std::string& name, const Lines& addresses);

/// Gives the next row of a table a fresh network and the network scripts of the first call.
void resetMachine();

/// The listing of a fresh sandbox.
inline const std::string freshListing =
    "192.0.2.1 255.255.255.0 eth0 1\n"
    "2001:db8::1 64 eth0 0\n";

/// Runs the program.
Outcome runAddrtool(const Lines& arguments);

/// Expects that the program succeeds and prints nothing.
void expectSilentSuccess(const Lines& arguments);

/// Expects that it adds this address to eth0 and prints nothing.
void add(const std::string& address, const std::string& netmaskOrPrefix = "255.255.255.0");

/// Expects that the program fails with this message, prints nothing else and changes nothing.
/// `injection` is an expression of strace that makes a system call fail.
void expectRefused(const Lines& arguments, const std::string& message,
                   const std::string& injection = "");

/// The global addresses that ip(8) shows, sorted: "eth0:1 192.0.2.10/24", "eth0 2001:db8::1/64".
Lines kernelAddresses();

/// Expects that the kernel has the addresses of a fresh sandbox and these, in any order.
void expectAdded(Lines added);

/// A file of the network scripts. Only a regular file has contents here.
struct NetworkFile {
  std::string contents{};
  mode_t mode = 0100644;
  uid_t owner = 0;
  gid_t group = 0;

  bool operator==(const NetworkFile&) const = default;
};
void PrintTo(const NetworkFile& file, std::ostream* stream);

/// All files in the directory of the network scripts, by name.
using NetworkFiles = std::map<std::string, NetworkFile>;
NetworkFiles networkFiles();

/// What the program can change.
struct MachineState {
  Lines addresses = kernelAddresses();
  NetworkFiles files = networkFiles();

  bool operator==(const MachineState&) const = default;
};
void PrintTo(const MachineState& state, std::ostream* stream);

/// The values of the variables in a shell that has sourced the file of the label.
Lines valuesInShell(const std::string& label, const Lines& variables);

/// Replaces /sbin/ifconfig by a program that records its arguments and then runs the script.
void recordIfconfig(const std::string& script = "");

/// The recorded commands, each word in angle brackets: "</sbin/ifconfig><eth0:1><down>".
Lines recordedCommands();

/// Expects that the program ends like this and hands exactly these command lines to the shell.
void expectCommandLines(const Lines& arguments, const Lines& commandLines,
                        const Outcome& outcome = silentSuccess);

}  // namespace addrtool::testing
