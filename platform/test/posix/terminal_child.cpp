// The far side of a pseudo-terminal.
#include "platform/test/posix/terminal_child.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "platform/test/child_streams.h"
#include "platform/test/posix/spawn.h"

namespace vel::test {

namespace {

/// Asks once a millisecond until the answer is yes or the time is over.
template <typename Question>
bool waitUntil(Question question) {
  bool answer = question();
  for (int passedMs = 0; !answer && passedMs < kChildTimeLimitSeconds * 1000; ++passedMs) {
    usleep(1000);
    answer = question();
  }
  return answer;
}

}  // namespace

TerminalChild::TerminalChild(const std::string& program, const std::vector<std::string>& arguments,
                             const TerminalOptions& options)
    : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0)
    throw std::runtime_error("no pseudo-terminal");
  attributesAtStart_ = attributes();
  const std::string terminal = ptsname(master_);
  const std::string others = options.onlyErrors ? "" : terminal;
  child_ = spawn(program, arguments, options.environment, {others, others, terminal});
  if (child_ == -1) throw std::runtime_error("cannot start " + program);
}

TerminalChild::~TerminalChild() {
  if (!ended_) {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
  close(master_);
}

void TerminalChild::type(const std::string& keys) const {
  if (write(master_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
    throw std::runtime_error("cannot type");
}

void TerminalChild::signal(int number) const {
  kill(child_, number);
}

std::string TerminalChild::readThrough(const std::string& text) {
  pollfd terminal{master_, POLLIN, 0};
  char buffer[512];
  while (unread_.find(text) == std::string::npos && poll(&terminal, 1, kChildTimeLimitSeconds * 1000) == 1) {
    const ssize_t count = read(master_, buffer, sizeof buffer);
    if (count <= 0) break;
    unread_.append(buffer, static_cast<std::size_t>(count));
  }
  const std::size_t at = unread_.find(text);
  std::string result = unread_.substr(0, at == std::string::npos ? at : at + text.size());
  unread_.erase(0, result.size());
  return result;
}

int TerminalChild::waitForStatus() {
  int status = -1;
  if (!waitUntil([&] { return waitpid(child_, &status, WNOHANG | WUNTRACED) == child_; })) return -1;
  ended_ = !WIFSTOPPED(status);
  return status;
}

termios TerminalChild::attributes() const {
  termios result{};
  if (tcgetattr(master_, &result) != 0) throw std::runtime_error("cannot ask the terminal");
  return result;
}

bool TerminalChild::waitForKeyMode() const {
  return waitUntil([this] { return (attributes().c_lflag & (ICANON | ECHO)) == 0; });
}

}  // namespace vel::test
