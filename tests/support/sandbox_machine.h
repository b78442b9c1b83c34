// The machine of scripts/sandbox: its addresses, its network scripts, its /sbin/ifconfig, and the
// program run on it. A test program with this file refuses to run its tests anywhere else.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace addrtool::testing {

using Lines = std::vector<std::string>;

inline const std::filesystem::path networkScripts = "/etc/sysconfig/network-scripts";

/// The file of an alias label or of an interface.
std::filesystem::path interfaceFile(const std::string& label);

/// Runs what a test needs beforehand; raises with what it wrote when it fails.
void prepare(const std::string& script);

/// Adds an alias behind the program's back: no file is written.
void addAlias(const std::string& label, const std::string& addressAndLength);

/// Makes a second interface with these addresses, "10.0.0.1/24", and an interface file.
void addInterface(const std::string& name, const Lines& addresses);

/// What the program lists on a machine that nobody has changed.
inline const std::string freshListing =
    "192.0.2.1 255.255.255.0 eth0 1\n"
    "2001:db8::1 64 eth0 0\n";

/// Runs the program.
Outcome runAddrtool(const Lines& arguments);

/// That the program fails with this message, which is all it prints, and changes nothing.
void expectRefused(const Lines& arguments, const std::string& message);

/// The global addresses by `ip`, sorted: "eth0:1 192.0.2.10/24", "eth0 2001:db8::1/64".
Lines kernelAddresses();

/// A file of the network scripts. Of anything but a regular file only what `stat` says is held.
struct NetworkFile {
  std::string contents{};
  mode_t mode = 0100644;
  uid_t owner = 0;
  gid_t group = 0;

  bool operator==(const NetworkFile&) const = default;
};
void PrintTo(const NetworkFile& file, std::ostream* stream);

/// Everything in the directory of the network scripts, by name.
using NetworkFiles = std::map<std::string, NetworkFile>;
NetworkFiles networkFiles();

/// What the program can change.
struct MachineState {
  Lines addresses = kernelAddresses();
  NetworkFiles files = networkFiles();

  bool operator==(const MachineState&) const = default;
};
void PrintTo(const MachineState& state, std::ostream* stream);

/// What a shell that sources the file of the label has in each of the variables.
Lines valuesInShell(const std::string& label, const Lines& variables);

/// Puts a script in the place of /sbin/ifconfig that notes its arguments and then does as told.
void recordIfconfig(const std::string& script = "");

/// The commands that the recording /sbin/ifconfig was run with, itself being the first word.
std::vector<Lines> recordedCommands();

/// The command lines that the program handed to the shell, byte for byte, and how it ended.
struct CommandLines {
  Outcome outcome;
  Lines commandLines;
};
CommandLines traceCommandLines(const Lines& arguments);

}  // namespace addrtool::testing
