// Options and operands: which actions they run, which messages and exit statuses they cause.
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string usageText =
    "Usage: addrtool [OPTIONS]...\n"
    "\n"
    "  -l,  --list                                  list all addresses in format: "
    "\"<ipaddr> <netmask> <interface> <is-primary-ip>\\n ...\"\n"
    "  -a,  --add <interface> <ipaddress> <netmask> add IP on <interface>\n"
    "  -d,  --del <ipaddress>                       delete IP\n"
    "  -h,  --help                                  display this help and exit\n"
    "  -v,  --qv-assigned-ip <ipaddress>            determine if <ipaddress> was assigned to this "
    "VE\n";

const std::string leftover =
    "Some parameters in command string are left unprocessed. Check parameters please.\n";
const std::string mainKept = "192.0.2.1: cannot delete main IP on interface\n";

// Runs the program with arguments as one types them.
Outcome runTyped(const std::string& arguments) {
  return runShell("addrtool " + arguments);
}

// Expects that the program prints this and then its usage text, and changes nothing.
void expectUsage(const Lines& commandLines, const std::string& out = "",
                 const std::string& complaint = "") {
  const MachineState before;
  for (const std::string& arguments : commandLines) {
    EXPECT_EQ(runTyped(arguments), (Outcome{2, 0, out, complaint + usageText})) << arguments;
  }
  EXPECT_EQ(MachineState(), before);
}

TEST(CommandLine, NoActionPrintsTheUsageText) {
  expectUsage(
      {"", "--main", "--main --main", "operand", "--main operand", "--", "-a ''", "--add="});
}

TEST(CommandLine, HelpPrintsTheUsageTextAndEnds) {
  expectUsage({"-h", "--help", "-h -l", "-d 192.0.2.1 -h"});
  expectUsage({"-l -h", "-l --help", "-l -h -l -h"}, freshListing);
}

TEST(CommandLine, AnAddWithoutExactlyTwoOperandsPrintsTheUsageText) {
  add("192.0.2.10");
  expectUsage({"-a eth0", "-a eth0 192.0.2.5", "192.0.2.5 -a eth0",
               "-a eth0 192.0.2.5 255.255.255.0 more", "more --add eth0 192.0.2.5 -l 255.255.255.0",
               "-l -a eth0 192.0.2.5", "-d 192.0.2.10 -l -a eth0 192.0.2.5",
               "-d 192.0.2.10 -l -a eth0 192.0.2.5 255.255.255.0 more"});
}

TEST(CommandLine, BadOptionsAloneAreReportedBeforeTheUsageText) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"-x", "invalid option -- 'x'"},
      {"-m", "invalid option -- 'm'"},  // --main has no short form
      {"-x -y", "invalid option -- 'x'\naddrtool: invalid option -- 'y'"},
      {"--wrong", "unrecognized option '--wrong'"},
      {"--list=now", "option '--list' doesn't allow an argument"},
      {"-d", "option requires an argument -- 'd'"},
      {"-v", "option requires an argument -- 'v'"},
      {"-a", "option requires an argument -- 'a'"},
      {"--del", "option '--del' requires an argument"},
      {"--qv-assigned-ip", "option '--qv-assigned-ip' requires an argument"},
      {"--main --add", "option '--add' requires an argument"},
  };
  for (const auto& [arguments, complaint] : rows) {
    expectUsage({arguments}, "", "addrtool: " + complaint + '\n');
  }
}

// Traced because an emulator would give the program another name; no trace works there.
TEST(CommandLine, ErrorsStartWithArgv0) {
  prepare("ln -s \"$(command -v addrtool)\" /etc/another-name");
  EXPECT_EQ(traceCommand({"trace=none"}, {"/etc/another-name", "-x"}).outcome,
            (Outcome{2, 0, "", "/etc/another-name: invalid option -- 'x'\n" + usageText}));
}

TEST(CommandLine, ABadOptionStopsNoAction) {
  EXPECT_EQ(runTyped("-x -l"), (Outcome{0, 0, freshListing, "addrtool: invalid option -- 'x'\n"}));
  EXPECT_EQ(runTyped("-l -d"),
            (Outcome{0, 0, freshListing, "addrtool: option requires an argument -- 'd'\n"}));
}

TEST(CommandLine, EachListOptionListsOnce) {
  for (const char* arguments :
       {"-l", "--list", "--li", "--main -l", "-l --main", "-l -a ''", "-a eth0 -l -a ''"}) {
    EXPECT_EQ(runTyped(arguments), success(freshListing)) << arguments;
  }
  EXPECT_EQ(runTyped("-l -l"), success(freshListing + freshListing));
  EXPECT_EQ(runTyped("-lll"), success(freshListing + freshListing + freshListing));
}

// The message ends in a system error if the start of the program left one in errno.
TEST(CommandLine, LeftoverOperandsEndTheProgramBeforeAnyAction) {
  for (const char* arguments : {"-l extra", "extra -l", "-l -- -l", "-v 10.0.0.1 extra more",
                                "-h extra", "--help extra", "-d 192.0.2.1 extra", "-l ''"}) {
    const Outcome outcome = runTyped(arguments);
    const std::string& message = outcome.err;
    EXPECT_EQ(outcome, onBothStreams(message, 1));
    EXPECT_EQ(findAll(message, "^" + leftover + "(System error [^\n]*\n)?$").size(), 1U) << message;
  }
}

// The failed write of the complaint about -x sets errno.
TEST(CommandLine, LeftoverOperandsAreReportedWithTheErrorInErrno) {
  EXPECT_EQ(runTyped("-x -l extra 2>/dev/full"),
            (Outcome{1, 0, leftover + "System error 28: No space left on device\n", ""}));
}

TEST(CommandLine, IgnoresThatTheOutputCannotBeWritten) {
  for (const char* action : {"--list", "-v 10.0.0.1"}) {
    EXPECT_EQ(runTyped(std::string(action) + " >/dev/full"), silentSuccess) << action;
  }
}

TEST(CommandLine, PosixlyCorrectEndsTheOptionsAtTheFirstOperand) {
  const MachineState before;
  const std::string add = "addrtool -a eth0 192.0.2.10 255.255.255.0 -l";
  EXPECT_EQ(runShell("POSIXLY_CORRECT=1 " + add).exitStatus, 2);
  EXPECT_EQ(MachineState(), before);
  EXPECT_EQ(runShell(add), success(freshListing));
  EXPECT_NE(MachineState(), before);
}

// --- several actions: what comes first, and what is left when one fails -------

TEST(Actions, RunInOrderUntilOneFails) {
  struct Row {
    std::string rule;
    std::string arguments;
    Outcome outcome;
    Lines aliases;  // at the end; the first two exist at the start
  };
  const std::string one = "eth0:1 192.0.2.10";
  const std::string two = "eth0:2 192.0.2.11";
  const Outcome listed = success(
      "192.0.2.1 255.255.255.0 eth0 1\n192.0.2.10 255.255.255.0 eth0 0\n"
      "192.0.2.11 255.255.255.0 eth0 0\n2001:db8::1 64 eth0 0\n"
      "198.51.100.1 255.255.255.0 eth1 1\n");
  const std::vector<Row> rows{
      {"list before delete", "-d 192.0.2.10 -l", listed, {two}},
      {"list before add",
       "192.0.2.12 -a eth0 255.255.255.0 -l",
       listed,
       {one, two, "eth0:3 192.0.2.12"}},
      {"delete before add, which takes the freed number",
       "-a eth0 192.0.2.12 255.255.255.0 -d 192.0.2.10",
       silentSuccess,
       {"eth0:1 192.0.2.12", two}},
      {"add on the last named interface only",
       "-a eth0 -a eth1 10.0.0.5 255.255.255.0",
       silentSuccess,
       {one, two, "eth1:1 10.0.0.5"}},
      {"list before a failing delete", "-d 192.0.2.1 -l", {1, 0, listed.out, mainKept}, {one, two}},
      {"a failing delete stops the rest and undoes nothing",
       "-a eth0 192.0.2.12 255.255.255.0 -d 192.0.2.10 --del 192.0.2.1 -d 192.0.2.11",
       {1, 0, "", mainKept},
       {two}},
      {"a failing add undoes no delete",
       "-a eth9 192.0.2.12 255.255.255.0 -d 192.0.2.10",
       failure("eth9: no such network interface."),
       {two}},
  };
  for (const auto& [rule, arguments, outcome, aliases] : rows) {
    SCOPED_TRACE(rule);
    resetMachine();
    addInterface("eth1", {"198.51.100.1/24"});
    NetworkFiles files = networkFiles();
    add("192.0.2.10");
    add("192.0.2.11");
    Lines addresses{"eth1 198.51.100.1/24"};
    for (const std::string& alias : aliases) {
      const std::size_t blank = alias.find(' ');
      const std::string label = alias.substr(0, blank);
      addresses.push_back(alias + "/24");
      files["ifcfg-" + label] = {aliasText(label, alias.substr(blank + 1), "255.255.255.0")};
    }
    EXPECT_EQ(runTyped(arguments), outcome);
    expectAdded(addresses);
    EXPECT_EQ(networkFiles(), files);
  }
}

TEST(Actions, StopWhenTheKernelCannotBeAsked) {
  add("192.0.2.10");
  for (const Lines& arguments : std::vector<Lines>{{"-a", "eth0", "192.0.2.11", "255.255.255.0"},
                                                   {"-d", "192.0.2.10"},
                                                   {"-d", "2001:db8::1"},
                                                   {"-l", "-v", "10.0.0.1", "-d", "192.0.2.10"}}) {
    expectRefused(arguments, "Can not send RTM_GETADDR request: No buffer space available",
                  "inject=sendto:error=ENOBUFS:when=1");
  }
}

// A sanitizer ends a program that runs out of memory, so the test exists only without one.
#if !ADDRTOOL_SANITIZED
TEST(Actions, ThatRunOutOfMemoryAreReported) {
  addManyAddresses(2000, true);
  const Trace trace = traceCommand({"trace=brk,/^mmap,socket"}, {"addrtool", "-l"});
  const Lines early = callsBefore("socket(", trace.calls);
  // No memory is left once the socket is open. A brk that fails returns a lower end than asked for.
  Lines options;
  for (const auto& [call, result] :
       {std::pair("brk", "retval=0"), std::pair("mmap", "error=ENOMEM")}) {
    const std::string next = std::to_string(callsStarting(call, early).size() + 1);
    options.push_back("inject=/^" + std::string(call) + ":" + result + ":when=" + next + "+");
  }
  EXPECT_EQ(traceCommand(options, {"addrtool", "-l"}).outcome, failure("std::bad_alloc"));
}
#endif

// A delete reads again if another alias may have vanished.
TEST(Actions, ReadTheKernelOnlyAsOftenAsNeeded) {
  add("192.0.2.10");
  add("192.0.2.11");
  for (const auto& [command, reads] :
       {std::pair(Lines{"addrtool", "-d", "192.0.2.10"}, 2U),
        std::pair(Lines{"addrtool", "-d", "192.0.2.11"}, 1U),
        std::pair(Lines{"addrtool", "-a", "eth0", "2001:db8::5", "64"}, 0U)}) {
    const auto [outcome, calls] = traceCommand({"trace=sendto"}, command);
    EXPECT_EQ(outcome, silentSuccess);
    EXPECT_EQ(callsStarting("sendto(", calls).size(), reads) << command[2];
  }
}

// --- both streams in one file: the output has the order of the events ---------

// Runs the program and returns both streams as one text.
std::string outputOf(const std::string& arguments) {
  const Outcome outcome = runTyped(arguments + " 2>&1");
  EXPECT_EQ(outcome.err, "");
  return outcome.out;
}

// A message of the support library goes to both streams. It may end in a system error.
void expectTwice(const std::string& start, const std::string& output) {
  const std::string message = output.substr(0, output.size() / 2);
  EXPECT_TRUE(message.starts_with(start)) << output;
  EXPECT_EQ(output, message + message);
}

TEST(StreamsInOrder, EveryMessageComesAfterTheAnswersBeforeIt) {
  const std::string complaint = "addrtool: invalid option -- 'x'\n";
  const std::vector<std::pair<std::string, std::string>> rows{
      {"-v 10.0.0.1 -d 192.0.2.1", "0" + mainKept},
      {"-v 10.0.0.1 -v 10.0.0.2 -d 192.0.2.1 -v 10.0.0.3", "00" + mainKept},
      {"-v 10.0.0.1 -a nosuch0 10.0.0.1 255.255.255.0", "0nosuch0: no such network interface.\n"},
      {"-l -d 192.0.2.1", freshListing + mainKept},
      {"-d 192.0.2.1 -v 10.0.0.1 -l", freshListing + mainKept},
      {"-v 10.0.0.1 -l -d 192.0.2.1", freshListing + "0" + mainKept},
      {"-l -h", freshListing + usageText},
      {"-v 10.0.0.1 -h", usageText},
      {"-l -x", complaint + freshListing},
      {"-v 10.0.0.1 -x -d 192.0.2.1", complaint + "0" + mainKept},
      {"-x", complaint + usageText},
  };
  for (const auto& [arguments, output] : rows) EXPECT_EQ(outputOf(arguments), output) << arguments;
  EXPECT_TRUE(outputOf("-l -x extra").starts_with(complaint + leftover));
  expectTwice(leftover, outputOf("-l extra"));
}

TEST(StreamsInOrder, TheOutputOfACommandComesAfterTheAnswersAndBeforeTheFailure) {
  recordIfconfig("echo complaint >&2; echo remark; [ \"$2\" != add ] || exit 7");
  const std::string output = "complaint\nremark\n";
  EXPECT_EQ(outputOf("-v 10.0.0.1 -a eth0 192.0.2.2 255.255.255.0"), "0" + output);
  EXPECT_EQ(outputOf("-l -a eth0 192.0.2.3 255.255.255.0"), freshListing + output);
  EXPECT_EQ(
      outputOf("-v 10.0.0.1 -a eth0 2001:db8::2 64"),
      "0" + output + "/sbin/ifconfig eth0 add 2001:db8::2/64 exited with non-zero status 7\n");
  fs::remove_all(networkScripts);
  EXPECT_EQ(
      outputOf("-l -a eth0 192.0.2.2 255.255.255.0"),
      freshListing + output + interfaceFile("eth0:1").string() + ": No such file or directory\n");
}

TEST(StreamsInOrder, AReportOnAnInterfaceFileComesAfterEverythingBefore) {
  writeFile(interfaceFile("eth0"), "IPV6ADDR_SECONDARIES=2001:db8::9\n");
  recordIfconfig("echo complaint >&2; echo remark");
  const std::string before = freshListing + "0complaint\nremark\n";
  const std::string output = outputOf("-v 10.0.0.1 -l -a eth0 2001:db8::2 64");
  ASSERT_TRUE(output.starts_with(before)) << output;
  expectTwice("2001:db8::9: cannot parse IPv6 address\n", output.substr(before.size()));
}

TEST(StreamsInOrder, AReportOnAnInterfaceFileComesBeforeTheMessageOfALaterFailure) {
  addAddresses({"eth0 2001:db8::5/64 nodad"});
  const std::string output = outputOf("-v 10.0.0.1 -d 2001:db8::1 -d 192.0.2.1");
  ASSERT_TRUE(output.starts_with('0')) << output;
  ASSERT_TRUE(output.ends_with(mainKept)) << output;
  expectTwice("Cannot remove last IPv6 address 2001:db8::1\n",
              output.substr(1, output.size() - 1 - mainKept.size()));
}

}  // namespace
}  // namespace addrtool::testing
