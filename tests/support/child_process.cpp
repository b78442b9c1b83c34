#include "support/child_process.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "support/files.h"

namespace addrtool::testing {
namespace {

using Streams = std::array<int, 3>;  // of input, which stays empty, output and errors

// A memory file takes any amount of output, unlike a pipe, which blocks when it is full.
Streams makeStreams() {
  Streams streams{};
  for (int& fd : streams) fd = memfd_create("stream", MFD_CLOEXEC);
  if (streams.back() == -1) throw std::runtime_error("memfd_create failed");
  return streams;
}

std::string takeContents(int fd) {
  std::string contents = readFile("/proc/self/fd/" + std::to_string(fd));
  close(fd);
  return contents;
}

Outcome waitFor(pid_t child, const Streams& streams) {
  int status = 0;
  waitpid(child, &status, 0);
  close(streams[0]);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0,
          takeContents(streams[1]), takeContents(streams[2])};
}

}  // namespace

void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << "exit status " << outcome.exitStatus << ", signal " << outcome.signal
          << "\n--- standard output\n"
          << outcome.out << "--- standard error\n"
          << outcome.err << "---";
}

Outcome runInChild(const std::function<void()>& function) {
  const Streams streams = makeStreams();
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == -1) throw std::runtime_error("fork failed");
  if (child == 0) {
    for (int fd = 0; const int stream : streams) dup2(stream, fd++);
    function();
    std::exit(0);
  }
  return waitFor(child, streams);
}

}  // namespace addrtool::testing
