// The progress display on a pseudo-terminal. What it draws is consoleui/console_ui_progress.cpp's matter.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <future>
#include <string>
#include <vector>

#include "platform/test/child_process.h"

namespace {

using Clock = std::chrono::steady_clock;

/// ui_child with standard error on a terminal of its own.
class TerminalChild {
 public:
  explicit TerminalChild(const char* action, const char* argument = nullptr) : started_(Clock::now()) {
    const std::string program = (std::filesystem::path(vel::test::ownProgram()).parent_path() / "ui_child");
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) return;
    const std::string terminal = ptsname(master_);
    child_ = fork();
    if (child_ != 0) return;
    const int slave = open(terminal.c_str(), O_RDWR | O_NOCTTY);
    if (slave < 0 || dup2(slave, STDERR_FILENO) < 0) _exit(126);
    close(slave);
    setenv("UI_ACTION", action, 1);
    execl(program.c_str(), program.c_str(), argument, nullptr);
    _exit(127);
  }
  TerminalChild(const TerminalChild&) = delete;
  TerminalChild& operator=(const TerminalChild&) = delete;
  ~TerminalChild() {
    if (master_ >= 0) close(master_);
  }

  /// All that it wrote, with the terminal's CR LF; reads until it has ended, with 0.
  std::string finish() {
    std::string text;
    char buffer[512];
    for (ssize_t count; (count = read(master_, buffer, sizeof buffer)) > 0;) {
      if (text.empty()) firstByte_ = Clock::now();
      text.append(buffer, static_cast<std::size_t>(count));
    }
    int status = -1;
    EXPECT_EQ(waitpid(child_, &status, 0), child_);
    EXPECT_EQ(status, 0);
    return text;
  }

  double secondsToFirstByte() const { return std::chrono::duration<double>(firstByte_ - started_).count(); }

 private:
  Clock::time_point started_;
  Clock::time_point firstByte_;
  int master_ = -1;
  pid_t child_ = -1;
};

/// What a terminal shows after these bytes.
std::vector<std::string> screenAfter(const std::string& bytes) {
  std::vector<std::string> lines(1);
  std::size_t column = 0;
  for (const char c : bytes) {
    if (c == '\r') {
      column = 0;
    } else if (c == '\n') {
      lines.emplace_back();
    } else {
      if (lines.back().size() <= column) lines.back().resize(column + 1, ' ');
      lines.back()[column++] = c;
    }
  }
  return lines;
}

TEST(ProgressDisplay, AppearsOnlyOnATerminalAndOnlyAfterASecond) {
  TerminalChild slow("slowProgress");
  TerminalChild quiet("slowProgress", "-quiet");
  TerminalChild fast("fastProgress");
  auto toFile = std::async(std::launch::async, [] {
    return vel::test::runChild("ui_child", {}, {.environment = {{"UI_ACTION", "slowProgress"}}});
  });
  EXPECT_EQ(fast.finish(), "next line\r\n");
  const std::string drawn = slow.finish();
  EXPECT_GE(slow.secondsToFirstByte(), 1.0);
  EXPECT_GE(std::count(drawn.begin(), drawn.end(), '%'), 2) << drawn;
  const std::vector<std::string> screen = {"Working [##############################] 100%   0:00 left",
                                           "next line", ""};
  EXPECT_EQ(screenAfter(drawn), screen);
  EXPECT_EQ(quiet.finish(), "next line\r\n");
  EXPECT_EQ(toFile.get().errors, "next line\n");
}

}  // namespace
