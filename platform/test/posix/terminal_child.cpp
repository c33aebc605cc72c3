// The far side of a pseudo-terminal.
#include "platform/test/posix/terminal_child.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

namespace vel::test {

TerminalChild::TerminalChild(const std::string& program, const std::vector<std::string>& arguments,
                             const Variables& environment, bool onlyErrors)
    : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  EXPECT_TRUE(grantpt(master_) == 0 && unlockpt(master_) == 0);
  attributesAtStart_ = attributes();
  const std::string terminal = ptsname(master_);
  const std::string others = onlyErrors ? "" : terminal;
  child_ = spawn(program, arguments, environment, {others, others, terminal});
}

TerminalChild::~TerminalChild() {
  if (!ended_) {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
  close(master_);
}

void TerminalChild::type(const std::string& keys) const {
  EXPECT_EQ(write(master_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

void TerminalChild::signal(int number) const {
  kill(child_, number);
}

std::string TerminalChild::readThrough(const std::string& text) {
  pollfd terminal{master_, POLLIN, 0};
  char buffer[512];
  while (unread_.find(text) == std::string::npos && poll(&terminal, 1, kTimeLimitMs) == 1) {
    const ssize_t count = read(master_, buffer, sizeof buffer);
    if (count <= 0) break;
    unread_.append(buffer, static_cast<std::size_t>(count));
  }
  const std::size_t at = unread_.find(text);
  std::string result = unread_.substr(0, at == std::string::npos ? at : at + text.size());
  unread_.erase(0, result.size());
  return result;
}

std::string TerminalChild::finish() {
  std::string text = readThrough(std::string("\0", 1));
  EXPECT_EQ(waitForStatus(), 0);
  EXPECT_TRUE(hasRestoredTerminal());
  return text;
}

int TerminalChild::waitForStatus() {
  int status = -1;
  waitUntil([&] { return waitpid(child_, &status, WNOHANG | WUNTRACED) == child_; });
  ended_ = status != -1 && !WIFSTOPPED(status);
  return status;
}

termios TerminalChild::attributes() const {
  termios result{};
  EXPECT_EQ(tcgetattr(master_, &result), 0);
  return result;
}

bool TerminalChild::waitsForKey() const {
  return waitUntil([this] { return (attributes().c_lflag & (ICANON | ECHO | ISIG)) == ISIG; });
}

bool TerminalChild::hasRestoredTerminal() const {
  const termios now = attributes();
  return std::memcmp(&now, &attributesAtStart_, sizeof now) == 0;
}

}  // namespace vel::test
