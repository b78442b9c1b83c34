// The commands that /sbin/ifconfig gets, and how their exit status is reported. A recorder replaces
// it where it must fail.
#include "changes/ifconfig.h"

#include <unistd.h>

#include <bit>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const Lines addAlias1{"-a", "eth0", "192.0.2.10", "255.255.255.0"};
const Lines addIPv6Command{"addrtool", "-a", "eth0", "2001:db8::5", "64"};
const std::string addAlias1Command =
    "/sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up";

std::string ifconfigFailure(const std::string& arguments) {
  return failureOf([&arguments] { runIfconfig(arguments); });
}

// The shell may exec the command or run it as a child. Either way this kills the process that
// system(3) waits for.
std::string killShell(int signal) {
  const std::string number = std::to_string(signal);
  return "if [ \"$(cat /proc/$PPID/comm)\" = sh ]; then kill -" + number + " $PPID; else kill -" +
         number + " $$; fi";
}

TEST(RunIfconfig, PassesTheArgumentsUnchanged) {
  recordIfconfig();
  EXPECT_EQ(ifconfigFailure("'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up"), "");
  EXPECT_EQ(ifconfigFailure("'a  b' \"c\" d\\ e 'f\ng' '' $((1+1))"), "");
  EXPECT_EQ(recordedCommands(),
            (Lines{"</sbin/ifconfig><eth0:1><192.0.2.10><netmask><255.255.255.0><up>",
                   "</sbin/ifconfig><a  b><c><d e><f\ng><><2>"}));
}

TEST(RunIfconfig, ReportsTheStatusOfAFailedCommand) {
  recordIfconfig("exit ${2-3}");
  for (const char* status : {"1", "2", "10", "127", "128", "137", "255"}) {
    const std::string arguments = std::string("eth0 ") + status;
    EXPECT_EQ(ifconfigFailure(arguments),
              "/sbin/ifconfig " + arguments + " exited with non-zero status " + status);
  }
  EXPECT_EQ(ifconfigFailure(""), "/sbin/ifconfig  exited with non-zero status 3");
  EXPECT_EQ(recordedCommands().back(), "</sbin/ifconfig>");
}

TEST(RunIfconfig, TreatsStatus0AsSuccessWhateverIsPrinted) {
  recordIfconfig("echo some output; echo SIOCSIFADDR: No such device >&2");
  expectInChild({0, 0, "some output\n", "SIOCSIFADDR: No such device\n"},
                [] { runIfconfig("eth0"); });
}

TEST(RunIfconfig, ReportsTheSignalThatKilledTheCommandAndDoesNotTryAgain) {
  for (const int signal : {1, 9, 15}) {
    recordIfconfig(killShell(signal));
    EXPECT_EQ(ifconfigFailure("eth0"),
              "/sbin/ifconfig eth0 killed with signal " + std::to_string(signal));
    EXPECT_EQ(recordedCommands().size(), 1U) << "signal " << signal;
  }
}

// Whether a core file is written depends on the machine, so the wait status is given here: signal
// 11 and the core bit, in the byte order of the machine.
TEST(RunIfconfig, NamesTheSignalOfACommandThatDumpedCore) {
  const char* const status = std::endian::native == std::endian::little ? "8b000000" : "0000008b";
  const Trace trace =
      traceCommand({std::string("inject=wait4:poke_exit=@arg2=") + status}, addIPv6Command);
  EXPECT_EQ(trace.outcome, failure("/sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 11"));
}

TEST(RunIfconfig, SetsNoTimeLimit) {
  const auto [outcome, calls] = traceCommand(
      {"-f", "trace=?alarm,setitimer,timer_create,timerfd_create", "signal=none"}, addIPv6Command);
  EXPECT_EQ(outcome, silentSuccess);
  EXPECT_EQ(calls, Lines{});
}

TEST(RunIfconfig, ReportsAMissingCommandAsTheShellDoes) {
  const MachineState before;
  prepare("mount -t tmpfs none /sbin");
  const Outcome outcome = runAddrtool(addAlias1);
  prepare("umount /sbin");
  EXPECT_EQ(outcome.exitStatus, 1);
  EXPECT_TRUE(outcome.err.ends_with('\n' + addAlias1Command + " exited with non-zero status 127\n"))
      << outcome.err;
  EXPECT_EQ(MachineState(), before);
}

TEST(RunIfconfig, AFailedCommandKeepsTheFiles) {
  add("192.0.2.11");
  add("192.0.2.12");
  add("2001:db8::5", "64");
  recordIfconfig("exit 1");
  const std::string addAlias3 = "'eth0:3' '192.0.2.10' netmask  '255.255.255.0' up";
  const std::vector<std::pair<Lines, std::string>> rows{
      {addAlias1, addAlias3},
      {{"-d", "192.0.2.11"}, "'eth0:1' down"},
      {{"-d", "2001:DB8::5"}, "eth0 del 2001:db8::5/64"},
  };
  for (const auto& [arguments, command] : rows) {
    expectRefused(arguments, "/sbin/ifconfig " + command + " exited with non-zero status 1");
  }
  EXPECT_EQ(recordedCommands().size(), rows.size());
}

// If the caller ignores SIGCHLD, the program inherits that, and waiting for a child fails. Then the
// command counts as failed with status 255, even if it succeeded.
TEST(RunIfconfig, ReportsAFailedWaitAsStatus255) {
  skipUnderEmulator("the shell that starts the emulator stops ignoring SIGCHLD");
  const NetworkFiles filesBefore = networkFiles();
  const Outcome outcome = runCommand(
      {"env", "--ignore-signal=CHLD", "addrtool", "-a", "eth0", "192.0.2.10", "255.255.255.0"});
  EXPECT_EQ(outcome, failure(addAlias1Command + " exited with non-zero status 255"));
  EXPECT_EQ(networkFiles(), filesBefore);
}

// If fork(2) fails, system(3) of glibc returns the same status as a shell that cannot start a
// command.
TEST(RunIfconfig, ReportsAFailedForkAsStatus127) {
  expectRefused(addAlias1, addAlias1Command + " exited with non-zero status 127",
                "inject=clone,clone3,fork,vfork:error=EAGAIN");
}

TEST(RunIfconfig, LetsTheCommandInheritOnlyTheStandardStreams) {
  prepare("mkdir -p /etc/kel; echo PRODUCT_ROOT_D /opt >/etc/kel/kel.conf");
  addAddresses({"eth0:1 198.51.100.1/24", "eth0:2 198.51.100.2/24"});
  recordIfconfig("ls /proc/self/fd; ip address flush dev eth0 label 'eth0:*'");
  const Outcome outcome = runInChild([] {
    close_range(3, ~0U, 0);
    execlp("addrtool", "addrtool", "-d", "198.51.100.1", "-a", "eth0", "192.0.2.10",
           "255.255.255.0", nullptr);
  });
  const std::string seen = "0\n1\n2\n3\n";  // 3 is the directory that ls reads
  EXPECT_EQ(outcome, (Outcome{0, 0, seen + seen + seen, ""}));
}

// --- the command lines that the program makes --------------------------------

TEST(RunIfconfig, PassesExactCommandLinesForAddsAndDeletes) {
  addAddresses({"eth0:1 192.0.2.8/24", "eth0:2 192.0.2.9/24", "eth0:web:2 192.0.2.11/24"});
  expectCommandLines(addAlias1,
                     {"/sbin/ifconfig 'eth0:3' '192.0.2.10' netmask  '255.255.255.0' up"});
  expectCommandLines({"-d", "192.0.2.11"}, {"/sbin/ifconfig 'eth0:web:2' down"});
  // An add passes the typed text, a delete the text of the kernel.
  expectCommandLines({"-a", "eth0", "2001:DB8:0::5", "48"},
                     {"/sbin/ifconfig eth0 add 2001:DB8:0::5/48"});
  expectCommandLines({"-d", "2001:0DB8::5"}, {"/sbin/ifconfig eth0 del 2001:db8::5/48"});
}

TEST(RunIfconfig, PassesPrefixLengthsThatAreTooLarge) {
  recordIfconfig("exit 1");
  Lines commands;
  for (const std::string length : {"0", "200", "65535"}) {
    const std::string operand = "2001:db8::5/" + length;
    expectRefused({"-a", "eth0", "2001:db8::5", length},
                  "/sbin/ifconfig eth0 add " + operand + " exited with non-zero status 1");
    commands.push_back("</sbin/ifconfig><eth0><add><" + operand + '>');
  }
  EXPECT_EQ(recordedCommands(), commands);
}

TEST(RunIfconfig, QuotesIPv4Operands) {
  recordIfconfig();
  add("10.0.0.5; $(id) *");
  EXPECT_EQ(recordedCommands(),
            Lines{"</sbin/ifconfig><eth0:1><10.0.0.5; $(id) *><netmask><255.255.255.0><up>"});
}

// Required: the shell expands them, so callers must be trusted.
TEST(RunIfconfig, DoesNotQuoteIPv6Operands) {
  recordIfconfig();
  add("2001:db8::$((4+5))", "64");
  EXPECT_EQ(recordedCommands(), Lines{"</sbin/ifconfig><eth0><add><2001:db8::9/64>"});
  EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR"}), Lines{"2001:db8::1/64"});
  EXPECT_TRUE(readFile(interfaceFile("eth0"))
                  .ends_with("IPV6ADDR_SECONDARIES=\"2001:db8::$((4+5))/64\"\n"));
}

}  // namespace
}  // namespace addrtool::testing
