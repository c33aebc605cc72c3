// The far side of a pseudo-terminal.
#include "platform/test/posix/terminal_child.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <thread>

#include "platform/test/child_streams.h"
#include "platform/test/posix/spawn.h"

namespace vel::test {

namespace {

constexpr int kTimeLimitMs = kChildTimeLimitSeconds * 1000;

/// Asks once a millisecond until the answer is yes or the time is over.
template <typename Question>
bool waitUntil(Question question) {
  for (int passedMs = 0; passedMs < kTimeLimitMs; ++passedMs) {
    if (question()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

}  // namespace

TerminalChild::TerminalChild(const std::string& program, const std::vector<std::string>& arguments,
                             const TerminalOptions& options)
    : started_(Clock::now()), master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0)
    throw std::runtime_error("no pseudo-terminal");
  attributesAtStart_ = attributes();
  SpawnActions actions;
  actions.separate();
  for (int stream = options.onlyErrors ? STDERR_FILENO : STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
    actions.open(stream, ptsname(master_), O_RDWR | O_NOCTTY);
  std::vector<std::string> command = {programPath(program, "")};
  command.insert(command.end(), arguments.begin(), arguments.end());
  if (!spawn(child_, command, options.environment, actions))
    throw std::runtime_error("cannot start " + program);
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

bool TerminalChild::readSome() {
  pollfd terminal{master_, POLLIN, 0};
  char buffer[512];
  if (poll(&terminal, 1, kTimeLimitMs) != 1) return false;
  const ssize_t count = read(master_, buffer, sizeof buffer);
  if (count <= 0) return false;
  if (firstByte_ == Clock::time_point()) firstByte_ = Clock::now();
  unread_.append(buffer, static_cast<std::size_t>(count));
  return true;
}

std::string TerminalChild::readThrough(const std::string& text) {
  while (unread_.find(text) == std::string::npos && readSome()) {
  }
  const std::size_t at = unread_.find(text);
  std::string result = unread_.substr(0, at == std::string::npos ? at : at + text.size());
  unread_.erase(0, result.size());
  return result;
}

std::string TerminalChild::readToEnd() {
  while (readSome()) {
  }
  return std::exchange(unread_, "");
}

int TerminalChild::waitForStatus() {
  int status = -1;
  if (!waitUntil([this, &status] { return waitpid(child_, &status, WNOHANG | WUNTRACED) == child_; }))
    return -1;
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

double TerminalChild::secondsToFirstByte() const {
  return std::chrono::duration<double>(firstByte_ - started_).count();
}

}  // namespace vel::test
