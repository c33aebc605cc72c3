// The user interface of tools on a pseudo-terminal: keys and the progress display. The texts are the matter
// of consoleui's own tests.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <vector>

#include "platform/test/posix/terminal_child.h"
#include "platform/test/variable.h"
#include "vel_include/vel_consoleui.h"

namespace {

using vel::test::TerminalChild;

const std::string kInvitation = " === Press any key to continue ===\r\n";

/// prompt_child, waiting for a key.
struct Tool : TerminalChild {
  explicit Tool(const std::vector<std::string>& script) : TerminalChild("prompt_child", script) {
    EXPECT_TRUE(waitsForKey());
  }
};

TEST(PromptForKey, TakesOneKeyWithoutEnterAndWithoutEcho) {
  for (const char* key : {"x", "\n", "\x1B[A", "\xC3\xA4"}) {
    Tool tool({"key", "string", "Name", "-"});
    EXPECT_EQ(tool.readThrough(kInvitation), kInvitation);
    tool.type(key);
    // Nothing of the key is shown or left for the next prompt.
    const std::string question = std::string(74, '-') + "\r\n Name:\r\n ";
    EXPECT_EQ(tool.readThrough("Name:\r\n "), question) << key;
    EXPECT_TRUE(tool.hasRestoredTerminal());
    tool.type("Ann\n");
    EXPECT_EQ(tool.finish(), "Ann\r\n[Ann]\r\nend\r\n") << key;
  }
}

TEST(PromptForKey, RestoresTheTerminalWhenASignalEndsTheTool) {
  for (const int signal : {SIGINT, SIGTERM, SIGQUIT, SIGHUP}) {
    Tool tool({"key"});
    tool.signal(signal);
    const int status = tool.waitForStatus();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal << ": " << status;
    EXPECT_TRUE(tool.hasRestoredTerminal()) << signal;
  }
}

TEST(PromptForKey, RestoresTheTerminalWhileTheToolIsStopped) {
  Tool tool({"key"});
  tool.signal(SIGTSTP);
  EXPECT_TRUE(WIFSTOPPED(tool.waitForStatus()) && tool.hasRestoredTerminal());
  tool.signal(SIGCONT);
  ASSERT_TRUE(tool.waitsForKey());
  tool.type("x");
  EXPECT_EQ(tool.finish(), kInvitation + "end\r\n");
}

TEST(PromptForKey, LeavesSignalsToTheToolsOwnHandlerOrIgnored) {
  Tool tool({"catch", "key", "enter", "caught"});
  tool.signal(SIGINT);
  tool.type("x");
  // The handler is back when the key has come.
  tool.readThrough("<ENTER> to continue ===\r\n");
  tool.signal(SIGINT);
  tool.type("\n");
  EXPECT_EQ(tool.finish(), "\r\n[2]\r\nend\r\n");
  Tool ignoring({"ignore", "key"});
  ignoring.signal(SIGINT);
  ignoring.type("x");
  EXPECT_EQ(ignoring.finish(), kInvitation + "end\r\n");
}

TEST(PromptForKey, TakesOneCharacterOfRedirectedInput) {
  const auto result = vel::test::runChild("prompt_child", {"string", "A", "-", "key", "string", "B", "-"},
                                          {.input = "one\nxtwo\n"});
  EXPECT_NE(result.output.find("[one]\n"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("[two]\n"), std::string::npos) << result.output;
}

TEST(ProgressDisplay, AppearsOnlyOnATerminalAndOnlyAfterASecond) {
  const auto start = [](const char* action, const std::vector<std::string>& arguments) {
    return TerminalChild("ui_child", arguments, {{"UI_ACTION", action}}, true);
  };
  const auto before = std::chrono::steady_clock::now();
  TerminalChild slow = start("slowProgress", {}), quiet = start("slowProgress", {"-quiet"});
  TerminalChild fast = start("fastProgress", {});
  EXPECT_EQ(fast.finish(), "next line\r\n");
  std::string drawn = slow.readThrough("%");
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::seconds(1));
  drawn += slow.finish();
  EXPECT_TRUE(drawn.ends_with("\rWorking [##############################] 100%   0:00 left\r\nnext line\r\n"))
      << drawn;
  EXPECT_GE(std::count(drawn.begin(), drawn.end(), '%'), 2) << drawn;
  EXPECT_EQ(quiet.finish(), "next line\r\n");
  const auto toFile = vel::test::runChild("ui_child", {}, {.environment = {{"UI_ACTION", "slowProgress"}}});
  EXPECT_EQ(toFile.errors, "next line\n");
}

TEST(LabelColumn, CountsCharactersOfUtf8Texts) {
  std::ostringstream stream;
  const vel::test::Variable locale("LC_ALL", "de_DE.UTF-8");
  VelClConsoleUI ui(0, nullptr);
  ui.setOutputStream(stream);
  ui.setFormatWidth(8);
  ui.format("Gr\u00F6\u00DFe", "5");
  EXPECT_EQ(stream.str(), "  Gr\u00F6\u00DFe...: 5\n");
}

}  // namespace
