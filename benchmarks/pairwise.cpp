// pairwise: runs programs side by side, round after round, and compares what they cost. Whatever
// else the machine does meanwhile, it does to all of them, so the ratios within a round stand where
// the times themselves do not. Each round has an order of its own, since a program finds the caches
// as the one before it left them.
//
//   pairwise [OPTION...] PROGRAM [ARGUMENT...] [::: PROGRAM [ARGUMENT...]]...
//
//   --runs N        rounds that count, after one that warms the caches (default 100)
//   --status S      how every program must end (default 0)
//   --between TEXT  a shell command to run, unmeasured, after each program
//   --peak-memory   print the peak resident memory in KiB instead, of one run each
//
// A program may be a sequence of commands, with +++ between them, that is measured as a whole.
// Standard output and standard error go to /dev/null. For each program a line is printed, with
// tabs: median CPU time, median wall time, both in microseconds, and the median of the first
// program's CPU time divided by this one's of the same round.
//
// CPU time is user and system time of a command and of the children it waited for, from
// wait4(2): the kernel splits it by sampling, but the sum is exact.
#include <fcntl.h>
#include <spawn.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Command = std::vector<char*>;  // as execvp(3) takes it, with the null pointer
using Program = std::vector<Command>;

struct Options {
  int runs = 100;
  int status = 0;
  std::string between;
  bool peakMemory = false;
};

struct Cost {
  double cpu = 0;  // microseconds
  double wall = 0;
};

void require(bool condition, const std::string& what) {
  if (!condition) throw std::runtime_error(what);
}

double microseconds(const timeval& time) {
  return 1e6 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec);
}

pid_t start(const Command& command) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
  pid_t child = 0;
  const int error = posix_spawnp(&child, command[0], &files, nullptr, command.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  require(error == 0, std::string("cannot run ") + command[0]);
  return child;
}

Cost runCommand(const Command& command, int expectedStatus) {
  using Clock = std::chrono::steady_clock;
  const auto begin = Clock::now();
  const pid_t child = start(command);
  int status = 0;
  rusage usage{};
  require(wait4(child, &status, 0, &usage) == child, "wait4 failed");
  const std::chrono::duration<double, std::micro> wall = Clock::now() - begin;
  require(WIFEXITED(status) && WEXITSTATUS(status) == expectedStatus,
          std::string(command[0]) + " ended otherwise than expected");
  return {microseconds(usage.ru_utime) + microseconds(usage.ru_stime), wall.count()};
}

Cost runProgram(const Program& program, const Options& options) {
  Cost total;
  for (const Command& command : program) {
    const Cost cost = runCommand(command, options.status);
    total.cpu += cost.cpu;
    total.wall += cost.wall;
  }
  if (!options.between.empty()) {
    require(std::system(options.between.c_str()) == 0, "failed: " + options.between);
  }
  return total;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

template <typename Figure>
double medianOf(const std::vector<std::vector<Cost>>& rounds, Figure figure) {
  std::vector<double> values;
  values.reserve(rounds.size());
  for (const auto& round : rounds) values.push_back(figure(round));
  return median(std::move(values));
}

void compare(const std::vector<Program>& programs, const Options& options) {
  std::vector<std::size_t> order(programs.size());
  std::iota(order.begin(), order.end(), 0);
  std::minstd_rand random(std::random_device{}());

  std::vector<std::vector<Cost>> rounds;
  for (int run = 0; run <= options.runs; ++run) {
    std::shuffle(order.begin(), order.end(), random);
    std::vector<Cost> round(programs.size());
    for (const std::size_t i : order) round[i] = runProgram(programs[i], options);
    if (run > 0) rounds.push_back(std::move(round));
  }
  for (std::size_t i = 0; i < programs.size(); ++i) {
    std::printf("%.1f\t%.1f\t%.4f\n", medianOf(rounds, [i](auto& round) { return round[i].cpu; }),
                medianOf(rounds, [i](auto& round) { return round[i].wall; }),
                medianOf(rounds, [i](auto& round) { return round[0].cpu / round[i].cpu; }));
  }
}

std::string peakMemoryOf(pid_t stopped) {
  // By way of "self", as the /proc of a sandbox has not all processes.
  std::ifstream status("/proc/self/../" + std::to_string(stopped) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::to_string(std::stol(line.substr(6)));
  }
  throw std::runtime_error("no VmHWM");
}

// The child is stopped as it exits, when its memory is still there to be asked about. What
// wait4(2) reports is no use here: it counts what the child had of ours before its exec.
std::string peakMemory(const Command& command) {
  const pid_t child = fork();
  require(child != -1, "fork failed");
  if (child == 0) {
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    execvp(command[0], command.data());
    _exit(127);
  }
  int status = 0;
  require(waitpid(child, &status, 0) == child && WIFSTOPPED(status),
          std::string("cannot trace ") + command[0]);
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
  std::string peak;
  while (peak.empty()) {
    ptrace(PTRACE_CONT, child, nullptr, nullptr);
    require(waitpid(child, &status, 0) == child && WIFSTOPPED(status), "the child was lost");
    if (status >> 8 == (SIGTRAP | PTRACE_EVENT_EXIT << 8)) peak = peakMemoryOf(child);
  }
  ptrace(PTRACE_CONT, child, nullptr, nullptr);
  waitpid(child, &status, 0);
  return peak;
}

int parseOptions(int argc, char** argv, Options& options) {
  int next = 1;
  for (; next < argc; ++next) {
    const std::string_view name = argv[next];
    if (name == "--peak-memory") {
      options.peakMemory = true;
      continue;
    }
    if (!name.starts_with("--")) break;
    require(next + 1 < argc, "an option lacks its value");
    const std::string value = argv[++next];
    if (name == "--runs") {
      options.runs = std::stoi(value);
    } else if (name == "--status") {
      options.status = std::stoi(value);
    } else if (name == "--between") {
      options.between = value;
    } else {
      throw std::runtime_error("no such option: " + std::string(name));
    }
  }
  return next;
}

std::vector<Program> parsePrograms(char** begin, char** end) {
  std::vector<Program> programs{{{}}};
  for (char** argument = begin; argument != end; ++argument) {
    const std::string_view text = *argument;
    if (text == ":::") {
      programs.push_back({{}});
    } else if (text == "+++") {
      programs.back().emplace_back();
    } else {
      programs.back().back().push_back(*argument);
    }
  }
  for (Program& program : programs) {
    for (Command& command : program) {
      require(!command.empty(), "a command is missing");
      command.push_back(nullptr);
    }
  }
  return programs;
}

}  // namespace

int main(int argc, char** argv) try {
  Options options;
  const int next = parseOptions(argc, argv, options);
  const auto programs = parsePrograms(argv + next, argv + argc);
  if (!options.peakMemory) {
    compare(programs, options);
  } else {
    for (const Program& program : programs) std::puts(peakMemory(program.front()).c_str());
  }
} catch (const std::exception& failure) {
  std::fprintf(stderr, "pairwise: %s\n", failure.what());
  return 1;
}
