// The log functions with the real syslog(3), which writes to the socket /dev/log.
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <array>

#include "support/log_recorder.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

// Receives messages as a syslog daemon does. The socket lives as long as the process.
class LogSocket {
 public:
  LogSocket() {
    const sockaddr_un address{AF_UNIX, "/dev/log"};
    unlink(&address.sun_path[0]);
    if (bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
      throw std::runtime_error("cannot bind /dev/log");
    }
  }

  // The messages received so far, without time stamps.
  Lines take() const {
    Lines messages;
    std::array<char, 4096> buffer{};
    for (ssize_t n = 0; (n = recv(fd_, buffer.data(), buffer.size(), MSG_DONTWAIT)) >= 0;) {
      const std::string message(buffer.data(), static_cast<std::size_t>(n));
      const auto parts =
          findAll(message, "^(<[0-9]+>)[A-Z][a-z]{2} [ 0-9]{2} [0-9:]{8} (.*[^\n])?\n?$");
      messages.push_back(parts.empty() ? message : parts[0][1] + parts[0][2]);
    }
    return messages;
  }

 private:
  int fd_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

std::string received(int priority, const std::string& text, const std::string& ident = "panel") {
  return '<' + std::to_string(priority) + ">" + ident + "[" + std::to_string(getpid()) +
         "]: " + text;
}

TEST(Syslog, GetsTheMessagesUpToTheLevelWithFacilityAndProcessId) {
  const LogSocket socket;
  initLogging(nullptr, LOG_WARNING, LOG_LOCAL1, 0, "panel");
  logMessage(LOG_ERR, "text %d", 5);
  logThroughList(LOG_WARNING, "%s", "list");
  logMessage(LOG_NOTICE, "above the level");
  logMessage(12, "with a facility of its own");
  EXPECT_EQ(socket.take(), (Lines{received(139, "text 5"), received(140, "list"),
                                  received(12, "with a facility of its own")}));
}

TEST(Syslog, IsReopenedByEachInitialisation) {
  const LogSocket first;
  initLogging(nullptr, LOG_INFO, LOG_MAIL, LOG_NDELAY, "first");
  logMessage(LOG_ERR, "one");
  const LogSocket second;  // gets the name; an open connection stays with the first
  logMessage(LOG_ERR, "two");
  initLogging(nullptr, LOG_INFO, LOG_DAEMON, LOG_NDELAY, "second");
  logMessage(LOG_ERR, "three");
  EXPECT_EQ(first.take(), (Lines{received(19, "one", "first"), received(19, "two", "first")}));
  EXPECT_EQ(second.take(), (Lines{received(27, "three", "second")}));
}

TEST(Syslog, TheOptionsArePassedOn) {
  const LogSocket socket;
  const Outcome outcome = runInChild([] {
    initLogging(nullptr, LOG_INFO, LOG_MAIL, LOG_PERROR, "panel");
    logMessage(LOG_ERR, "text");
  });
  EXPECT_EQ(findAll(outcome.err, "^panel\\[[0-9]+\\]: text\n$").size(), 1U) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(socket.take().size(), 1U);
}

TEST(Syslog, LevelMinusOneKeepsTheMask) {
  const LogSocket socket;
  for (const int mask : {LOG_UPTO(LOG_DEBUG), LOG_MASK(LOG_INFO)}) {
    setlogmask(mask);
    initLogging(nullptr, -1, LOG_MAIL, 0, "panel");
    logMessage(LOG_INFO, "information");
    logMessage(LOG_DEBUG, "details");
  }
  EXPECT_EQ(socket.take(), (Lines{received(22, "information"), received(23, "details"),
                                  received(22, "information")}));
}

TEST(Syslog, StaysAsItIsWhileTheConsoleIsTheSink) {
  const LogSocket socket;
  initLogging(nullptr, LOG_INFO, LOG_MAIL, 0, "panel");
  expectInChild(onBothStreams("text\n"), [] {
    initLogging("console", LOG_ERR, LOG_DAEMON, 0, "other");
    logMessage(LOG_ERR, "text");
  });
  EXPECT_TRUE(socket.take().empty());

  initLogging("console", LOG_ERR, LOG_DAEMON, 0, "other");
  syslog(LOG_INFO, "direct");
  syslog(LOG_DEBUG, "above the level");
  EXPECT_EQ(socket.take(), (Lines{received(22, "direct")}));
}

}  // namespace
}  // namespace addrtool::testing
