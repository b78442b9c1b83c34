// Options and operands: which actions they run, which messages and exit statuses they cause.
#include <algorithm>

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

// Expects that the program prints this and then its usage text, and changes nothing.
void expectUsage(const std::vector<Lines>& commandLines, const std::string& out = "",
                 const std::string& complaint = "") {
  const MachineState before;
  for (const Lines& arguments : commandLines) {
    EXPECT_EQ(runAddrtool(arguments), (Outcome{2, 0, out, complaint + usageText}))
        << ::testing::PrintToString(arguments);
  }
  EXPECT_EQ(MachineState(), before);
}

TEST(CommandLine, NoActionPrintsTheUsageText) {
  expectUsage({{},
               {"--main"},
               {"--main", "--main"},
               {"operand"},
               {"--main", "operand"},
               {"--"},
               {"-a", ""},
               {"--add="}});
}

TEST(CommandLine, HelpPrintsTheUsageTextAndEnds) {
  expectUsage({{"-h"}, {"--help"}, {"-h", "-l"}, {"-d", "192.0.2.1", "-h"}});
  expectUsage({{"-l", "-h"}, {"-l", "--help"}, {"-l", "-h", "-l", "-h"}}, freshListing);
}

TEST(CommandLine, AnAddWithoutExactlyTwoOperandsPrintsTheUsageText) {
  ASSERT_EQ(runAddrtool({"-a", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
  expectUsage({{"-a", "eth0"},
               {"-a", "eth0", "192.0.2.5"},
               {"192.0.2.5", "-a", "eth0"},
               {"-a", "eth0", "192.0.2.5", "255.255.255.0", "more"},
               {"more", "--add", "eth0", "192.0.2.5", "-l", "255.255.255.0"},
               {"-l", "-a", "eth0", "192.0.2.5"},
               {"-d", "192.0.2.10", "-l", "-a", "eth0", "192.0.2.5"},
               {"-d", "192.0.2.10", "-l", "-a", "eth0", "192.0.2.5", "255.255.255.0", "more"}});
}

TEST(CommandLine, BadOptionsAloneAreReportedBeforeTheUsageText) {
  const std::vector<std::pair<Lines, std::string>> table{
      {{"-x"}, "invalid option -- 'x'"},
      {{"-m"}, "invalid option -- 'm'"},  // --main has no short form
      {{"-x", "-y"}, "invalid option -- 'x'\naddrtool: invalid option -- 'y'"},
      {{"--wrong"}, "unrecognized option '--wrong'"},
      {{"--list=now"}, "option '--list' doesn't allow an argument"},
      {{"-d"}, "option requires an argument -- 'd'"},
      {{"-v"}, "option requires an argument -- 'v'"},
      {{"-a"}, "option requires an argument -- 'a'"},
      {{"--del"}, "option '--del' requires an argument"},
      {{"--qv-assigned-ip"}, "option '--qv-assigned-ip' requires an argument"},
      {{"--main", "--add"}, "option '--add' requires an argument"}};
  for (const auto& [arguments, complaint] : table) {
    expectUsage({arguments}, "", "addrtool: " + complaint + '\n');
  }
}

// Traced because an emulator would give the program another name; no trace works there.
TEST(CommandLine, ErrorsStartWithArgv0) {
  prepare("ln -s \"$(command -v addrtool)\" /etc/another-name");
  EXPECT_EQ(traceCommand({"-e", "trace=none"}, {"/etc/another-name", "-x"}).outcome,
            (Outcome{2, 0, "", "/etc/another-name: invalid option -- 'x'\n" + usageText}));
}

TEST(CommandLine, ABadOptionStopsNoAction) {
  EXPECT_EQ(runAddrtool({"-x", "-l"}),
            (Outcome{0, 0, freshListing, "addrtool: invalid option -- 'x'\n"}));
  EXPECT_EQ(runAddrtool({"-l", "-d"}),
            (Outcome{0, 0, freshListing, "addrtool: option requires an argument -- 'd'\n"}));
}

TEST(CommandLine, EachListOptionListsOnce) {
  for (const Lines& arguments : std::vector<Lines>{{"-l"},
                                                   {"--list"},
                                                   {"--li"},
                                                   {"--main", "-l"},
                                                   {"-l", "--main"},
                                                   {"-l", "-a", ""},
                                                   {"-a", "eth0", "-l", "-a", ""}}) {
    EXPECT_EQ(runAddrtool(arguments), success(freshListing)) << arguments.back();
  }
  EXPECT_EQ(runAddrtool({"-l", "-l"}), success(freshListing + freshListing));
  EXPECT_EQ(runAddrtool({"-lll"}), success(freshListing + freshListing + freshListing));
}

const std::string leftoverMessage =
    "Some parameters in command string are left unprocessed. Check parameters please.\n";

// The message ends in a system error if the start of the program left one in errno.
TEST(CommandLine, LeftoverOperandsEndTheProgramBeforeAnyAction) {
  for (const Lines& arguments : std::vector<Lines>{{"-l", "extra"},
                                                   {"extra", "-l"},
                                                   {"-l", "--", "-l"},
                                                   {"-v", "10.0.0.1", "extra", "more"},
                                                   {"-h", "extra"},
                                                   {"--help", "extra"},
                                                   {"-d", "192.0.2.1", "extra"},
                                                   {"-l", ""}}) {
    const Outcome outcome = runAddrtool(arguments);
    const std::string& text = outcome.err;
    EXPECT_EQ(outcome.exitStatus, 1) << text;
    EXPECT_EQ(outcome.out, text);
    ASSERT_TRUE(text.starts_with(leftoverMessage)) << text;
    const std::string rest = text.substr(leftoverMessage.size());
    EXPECT_TRUE(rest.empty() ||
                (rest.starts_with("System error ") && rest.find('\n') == rest.size() - 1))
        << text;
  }
}

// The failed write of the complaint about -x sets errno.
TEST(CommandLine, LeftoverOperandsAreReportedWithTheErrorInErrno) {
  EXPECT_EQ(runShell("addrtool -x -l extra 2>/dev/full"),
            (Outcome{1, 0, leftoverMessage + "System error 28: No space left on device\n", ""}));
}

// --- several actions: what comes first, and what is left when one fails -------

struct ActionsRow {
  std::string rule;
  Lines arguments;
  Outcome outcome;
  Lines aliases;  // at the end; the first two exist at the start
};

void PrintTo(const ActionsRow& row, std::ostream* stream) {
  *stream << ::testing::PrintToString(row.arguments);
}

using Actions = ::testing::TestWithParam<ActionsRow>;

TEST_P(Actions, RunInOrderUntilOneFails) {
  const auto& [rule, arguments, outcome, aliases] = GetParam();
  ASSERT_EQ(runAddrtool({"-a", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
  ASSERT_EQ(runAddrtool({"-a", "eth0", "192.0.2.11", "255.255.255.0"}), silentSuccess);
  addInterface("eth1", {"198.51.100.1/24"});
  NetworkFiles files{{"ifcfg-eth0", networkFiles().at("ifcfg-eth0")},
                     {"ifcfg-eth1", {"DEVICE=eth1\n"}}};
  Lines addresses{"eth1 198.51.100.1/24"};
  for (const std::string& alias : aliases) {
    const std::size_t blank = alias.find(' ');
    const std::string label = alias.substr(0, blank);
    addresses.push_back(alias + "/24");
    files["ifcfg-" + label] = {aliasText(label, alias.substr(blank + 1), "255.255.255.0")};
  }
  EXPECT_EQ(runAddrtool(arguments), outcome);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses(addresses));
  EXPECT_EQ(networkFiles(), files);
}

const std::string one = "eth0:1 192.0.2.10";
const std::string two = "eth0:2 192.0.2.11";
const Outcome listed = success(
    "192.0.2.1 255.255.255.0 eth0 1\n192.0.2.10 255.255.255.0 eth0 0\n"
    "192.0.2.11 255.255.255.0 eth0 0\n2001:db8::1 64 eth0 0\n198.51.100.1 255.255.255.0 eth1 1\n");
const std::string mainKept = "192.0.2.1: cannot delete main IP on interface";

INSTANTIATE_TEST_SUITE_P(
    Several, Actions,
    ::testing::Values(ActionsRow{"ListBeforeDelete", {"-d", "192.0.2.10", "-l"}, listed, {two}},
                      ActionsRow{"ListBeforeAdd",
                                 {"192.0.2.12", "-a", "eth0", "255.255.255.0", "-l"},
                                 listed,
                                 {one, two, "eth0:3 192.0.2.12"}},
                      ActionsRow{"DeleteBeforeAddWhichTakesTheFreedNumber",
                                 {"-a", "eth0", "192.0.2.12", "255.255.255.0", "-d", "192.0.2.10"},
                                 silentSuccess,
                                 {"eth0:1 192.0.2.12", two}},
                      ActionsRow{"AddOnTheLastNamedInterfaceOnly",
                                 {"-a", "eth0", "-a", "eth1", "10.0.0.5", "255.255.255.0"},
                                 silentSuccess,
                                 {one, two, "eth1:1 10.0.0.5"}},
                      ActionsRow{"ListBeforeAFailingDelete",
                                 {"-d", "192.0.2.1", "-l"},
                                 {1, 0, listed.out, mainKept + '\n'},
                                 {one, two}},
                      ActionsRow{"AFailingDeleteStopsTheRestAndUndoesNothing",
                                 {"-a", "eth0", "192.0.2.12", "255.255.255.0", "-d", "192.0.2.10",
                                  "-d", "192.0.2.1", "-d", "192.0.2.11"},
                                 failure(mainKept),
                                 {two}},
                      ActionsRow{"AFailingAddUndoesNoDelete",
                                 {"-a", "eth9", "192.0.2.12", "255.255.255.0", "-d", "192.0.2.10"},
                                 failure("eth9: no such network interface."),
                                 {two}}),
    [](const auto& row) { return row.param.rule; });

TEST(CommandLine, AFailingListingStopsTheOtherActions) {
  addAlias("eth0:1", "192.0.2.10/24");
  expectRefusedWith("inject=sendto:error=ENOBUFS:when=1",
                    {"-l", "-v", "10.0.0.1", "-d", "192.0.2.10"},
                    "Can not send RTM_GETADDR request: No buffer space available");
}

// A sanitizer ends a program that runs out of memory, so the test exists only without one.
#if !ADDRTOOL_SANITIZED
TEST(CommandLine, AnActionThatRunsOutOfMemoryIsReported) {
  addManyAddresses(2000, true);
  const Lines calls = traceCommand({"-e", "trace=brk,/^mmap,socket"}, {"addrtool", "-l"}).calls;
  const auto socket = std::ranges::find_if(
      calls, [](const std::string& call) { return call.starts_with("socket("); });
  const Lines early(calls.begin(), socket);
  // No memory is left once the socket is open. A brk that fails returns a lower end than asked for.
  Lines options;
  for (const auto& [call, result] :
       {std::pair("brk", "retval=0"), std::pair("mmap", "error=ENOMEM")}) {
    const auto next = callsStarting(call, early).size() + 1;
    options.insert(options.end(), {"-e", "inject=/^" + std::string(call) + ":" + result +
                                             ":when=" + std::to_string(next) + "+"});
  }
  EXPECT_EQ(traceCommand(options, {"addrtool", "-l"}).outcome, failure("std::bad_alloc"));
}
#endif

TEST(CommandLine, DeletesRunInTheOrderOfTheCommandLine) {
  addAlias("eth0:1", "192.0.2.10/24");
  addAlias("eth0:2", "192.0.2.11/24");
  expectCommandLines({"-d", "192.0.2.11", "--del", "192.0.2.10"},
                     {"/sbin/ifconfig 'eth0:2' down", "/sbin/ifconfig 'eth0:1' down"});
}

}  // namespace
}  // namespace addrtool::testing
