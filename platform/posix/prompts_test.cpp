// Waiting for a key on a pseudo-terminal. The texts are consoleui/prompts_test.cpp's matter.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/posix/terminal_child.h"

namespace {

using vel::test::TerminalChild;

const std::string kInvitation = " === Press any key to continue ===\r\n";

/// prompt_child on a terminal.
class Tool : public TerminalChild {
 public:
  explicit Tool(const std::vector<std::string>& script) : TerminalChild("prompt_child", script) {}

  /// Whether it now waits for a key, with the keys that send signals in force.
  bool waitsForKey() const { return waitForKeyMode() && (attributes().c_lflag & ISIG) != 0; }
  bool hasRestoredTerminal() const {
    const termios before = attributesAtStart(), now = attributes();
    return now.c_lflag == before.c_lflag && now.c_iflag == before.c_iflag && now.c_oflag == before.c_oflag &&
           std::memcmp(now.c_cc, before.c_cc, sizeof now.c_cc) == 0;
  }
  /// What it wrote until its end, which is a good one.
  std::string finish() {
    std::string text = readToEnd();
    EXPECT_EQ(waitForStatus(), 0);
    EXPECT_TRUE(hasRestoredTerminal());
    return text;
  }
};

TEST(PromptForKey, TakesOneKeyWithoutEnterAndWithoutEcho) {
  for (const char* key : {"x", "\n", "\x1B[A", "\xC3\xA4"}) {
    Tool tool({"key", "string", "Name", "-"});
    EXPECT_EQ(tool.readThrough(kInvitation), kInvitation);
    ASSERT_TRUE(tool.waitsForKey());
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
  for (const int signal : {SIGINT, SIGTERM, SIGQUIT, SIGHUP, SIGALRM, SIGUSR1}) {
    Tool tool({"key"});
    ASSERT_TRUE(tool.waitsForKey());
    tool.signal(signal);
    const int status = tool.waitForStatus();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal << ": " << status;
    EXPECT_TRUE(tool.hasRestoredTerminal()) << signal;
  }
}

TEST(PromptForKey, RestoresTheTerminalWhileTheToolIsStopped) {
  Tool tool({"key"});
  ASSERT_TRUE(tool.waitsForKey());
  tool.signal(SIGTSTP);
  EXPECT_TRUE(WIFSTOPPED(tool.waitForStatus()));
  EXPECT_TRUE(tool.hasRestoredTerminal());
  tool.signal(SIGCONT);
  ASSERT_TRUE(tool.waitsForKey());
  tool.type("x");
  EXPECT_EQ(tool.finish(), kInvitation + "end\r\n");
}

TEST(PromptForKey, LeavesSignalsToTheToolsOwnHandler) {
  Tool tool({"catch", "key", "enter", "caught"});
  ASSERT_TRUE(tool.waitsForKey());
  tool.signal(SIGINT);
  tool.type("x");
  // The handler is back when the key has come.
  tool.readThrough("<ENTER> to continue ===\r\n");
  EXPECT_TRUE(tool.hasRestoredTerminal());
  tool.signal(SIGINT);
  tool.type("\n");
  EXPECT_EQ(tool.finish(), "\r\n[2]\r\nend\r\n");
}

TEST(PromptForKey, LeavesIgnoredSignalsIgnored) {
  Tool tool({"ignore", "key"});
  ASSERT_TRUE(tool.waitsForKey());
  tool.signal(SIGINT);
  tool.type("x");
  EXPECT_EQ(tool.finish(), kInvitation + "end\r\n");
}

TEST(PromptForKey, TakesOneCharacterOfRedirectedInput) {
  const auto result = vel::test::runChild("prompt_child", {"string", "A", "-", "key", "string", "B", "-"},
                                          {.input = "one\nxtwo\n"});
  EXPECT_NE(result.output.find("[one]\n"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("[two]\n"), std::string::npos) << result.output;
}

}  // namespace
