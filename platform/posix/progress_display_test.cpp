// The progress display on a pseudo-terminal. What it draws is consoleui/console_ui_progress.cpp's matter.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/posix/terminal_child.h"

namespace {

using vel::test::TerminalChild;

/// ui_child with standard error on a terminal of its own.
TerminalChild start(const char* action, const std::vector<std::string>& arguments = {}) {
  return {"ui_child", arguments, {.environment = {{"UI_ACTION", action}}, .onlyErrors = true}};
}

/// All that it wrote until its end, which is a good one.
std::string finish(TerminalChild& child) {
  std::string text = child.readToEnd();
  EXPECT_EQ(child.waitForStatus(), 0);
  return text;
}

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
  const auto started = std::chrono::steady_clock::now();
  TerminalChild slow = start("slowProgress");
  TerminalChild quiet = start("slowProgress", {"-quiet"});
  TerminalChild fast = start("fastProgress");
  auto toFile = std::async(std::launch::async, [] {
    return vel::test::runChild("ui_child", {}, {.environment = {{"UI_ACTION", "slowProgress"}}});
  });
  EXPECT_EQ(finish(fast), "next line\r\n");
  std::string drawn = slow.readThrough("%");
  EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::seconds(1));
  drawn += finish(slow);
  EXPECT_GE(std::count(drawn.begin(), drawn.end(), '%'), 2) << drawn;
  const std::vector<std::string> screen = {"Working [##############################] 100%   0:00 left",
                                           "next line", ""};
  EXPECT_EQ(screenAfter(drawn), screen);
  EXPECT_EQ(finish(quiet), "next line\r\n");
  EXPECT_EQ(toFile.get().errors, "next line\n");
}

}  // namespace
