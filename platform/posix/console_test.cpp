// Tests the user interface of tools on a pseudo-terminal: keys and the progress display. The tests of
// consoleui check the texts.
#include <poll.h>
#include <pty.h>

#include "platform/test/posix/processes.h"
#include "platform/test/test.h"

namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/// A program on its own pseudo-terminal, and its user. The terminal is not the controlling one of the
/// program, so signals are sent with `signal`, not typed.
class Tool {
 public:
  /// With onlyErrors only standard error is the terminal.
  Tool(const char* program, std::vector<std::string> arguments, bool onlyErrors = false) {
    const std::string path = fs::path(vel::test::ownProgram()).replace_filename(program).string();
    arguments.insert(arguments.begin(), path);
    int terminal = -1;
    EXPECT_EQ(openpty(&master_, &terminal, nullptr, nullptr, nullptr), 0);
    atStart_ = attributes();
    child_ = fork();
    if (child_ == 0) {
      setpgid(0, 0);
      // A session without a terminal may ignore some signals, and programs inherit that.
      for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) ::signal(number, SIG_DFL);
      for (int stream = onlyErrors ? 2 : 0; stream < 3; ++stream) dup2(terminal, stream);
      close(terminal);
      close(master_);
      execv(path.c_str(), vel::test::pointersTo(arguments).data());
      _exit(127);
    }
    close(terminal);
  }
  Tool(const Tool&) = delete;
  ~Tool() {
    if (!ended_ && kill(child_, SIGKILL) == 0) waitpid(child_, nullptr, 0);
    close(master_);
  }

  void type(const std::string& keys) const {
    EXPECT_EQ(write(master_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }
  void signal(int number) const { kill(child_, number); }

  /// Returns the output since the last call up to the end of `text`, with the terminal's CR LF; less if the
  /// program ended before.
  std::string readThrough(const std::string& text) {
    pollfd terminal{master_, POLLIN, 0};
    std::size_t at = 0;
    while ((at = unread_.find(text)) == std::string::npos &&
           poll(&terminal, 1, vel::test::kTimeLimitMs) == 1) {
      char buffer[512];
      const ssize_t count = read(master_, buffer, sizeof buffer);
      if (count <= 0) break;
      unread_.append(buffer, static_cast<std::size_t>(count));
    }
    std::string result = unread_.substr(0, at == std::string::npos ? at : at + text.size());
    unread_.erase(0, result.size());
    return result;
  }
  /// Waits until the program stops or ends, and returns the wait status.
  int waitForStatus() {
    int status = -1;
    EXPECT_TRUE(
        vel::test::waitUntil([&] { return waitpid(child_, &status, WNOHANG | WUNTRACED) == child_; }));
    ended_ = !WIFSTOPPED(status);
    return status;
  }
  /// Returns the output until the program ends, which must be with exit code 0 and a restored terminal.
  std::string finish() {
    std::string text = readThrough(std::string("\0", 1));
    EXPECT_EQ(waitForStatus(), 0);
    EXPECT_TRUE(hasRestoredTerminal());
    return text;
  }

  /// Waits until keys arrive without line editing and echo, while those for signals still raise them.
  bool waitsForKey() const {
    return vel::test::waitUntil([this] { return (attributes().c_lflag & (ICANON | ECHO | ISIG)) == ISIG; });
  }
  /// Can be asked after the program ended, too.
  bool hasRestoredTerminal() const {
    const termios now = attributes();
    return now.c_iflag == atStart_.c_iflag && now.c_oflag == atStart_.c_oflag &&
           now.c_cflag == atStart_.c_cflag && now.c_lflag == atStart_.c_lflag &&
           std::ranges::equal(now.c_cc, atStart_.c_cc);
  }

 private:
  termios attributes() const {
    termios result{};
    EXPECT_EQ(tcgetattr(master_, &result), 0);
    return result;
  }

  int master_ = -1;
  termios atStart_{};
  pid_t child_ = -1;
  bool ended_ = false;
  std::string unread_;
};

const std::string kInvitation = " === Press any key to continue ===\r\n";

/// prompt_child, waiting for a key.
struct Prompting : Tool {
  explicit Prompting(std::vector<std::string> script) : Tool("prompt_child", std::move(script)) {
    EXPECT_TRUE(waitsForKey());
  }
};

TEST(PromptForKey, ReadsOneKeyWithoutEnterAndEcho) {
  for (const char* key : {"x", "\n", "\x1B[A", "\xC3\xA4"}) {
    Prompting tool({"key", "string", "Name", "-"});
    EXPECT_EQ(tool.readThrough(kInvitation), kInvitation);
    tool.type(key);
    // No byte of the key is echoed or left for the next prompt.
    const std::string question = std::string(74, '-') + "\r\n Name:\r\n ";
    EXPECT_EQ(tool.readThrough("Name:\r\n "), question) << key;
    EXPECT_TRUE(tool.hasRestoredTerminal());
    tool.type("Ann\n");
    EXPECT_EQ(tool.finish(), "Ann\r\n[Ann]\r\nend\r\n") << key;
  }
}

TEST(PromptForKey, RestoresTheTerminalWhenASignalEndsTheTool) {
  for (const int signal : {SIGINT, SIGTERM, SIGQUIT, SIGHUP, SIGALRM, SIGUSR1}) {
    Prompting tool({"key"});
    tool.signal(signal);
    const int status = tool.waitForStatus();
    EXPECT_TRUE(WIFSIGNALED(status)) << signal;
    EXPECT_EQ(WTERMSIG(status), signal);
    EXPECT_TRUE(tool.hasRestoredTerminal()) << signal;
  }
}

TEST(PromptForKey, RestoresTheTerminalWhileTheToolIsStopped) {
  Prompting tool({"key"});
  tool.signal(SIGTSTP);
  EXPECT_TRUE(WIFSTOPPED(tool.waitForStatus()));
  EXPECT_TRUE(tool.hasRestoredTerminal());
  tool.signal(SIGCONT);
  ASSERT_TRUE(tool.waitsForKey());
  tool.type("x");
  EXPECT_EQ(tool.finish(), kInvitation + "end\r\n");
}

TEST(PromptForKey, KeepsTheHandlersOfTheToolAndIgnoredSignals) {
  Prompting tool({"catch", "key", "enter", "caught"});
  tool.signal(SIGINT);
  tool.type("x");
  // The handler is restored after the key.
  tool.readThrough("<ENTER> to continue ===\r\n");
  tool.signal(SIGINT);
  tool.type("\n");
  EXPECT_EQ(tool.finish(), "\r\n[2]\r\nend\r\n");
  Prompting ignoring({"ignore", "key"});
  ignoring.signal(SIGINT);
  ignoring.type("x");
  EXPECT_EQ(ignoring.finish(), kInvitation + "end\r\n");
}

// On Windows the key is always read from the console.
TEST(PromptForKey, ReadsOneCharacterOfRedirectedInput) {
  const auto result = vel::test::runChild("prompt_child", {"string", "A", "-", "key", "string", "B", "-"},
                                          {.input = "one\nxtwo\n"});
  EXPECT_THAT(result.output, HasSubstr("[one]\n"));
  EXPECT_THAT(result.output, HasSubstr("[two]\n"));
}

// On a busy machine the fast tool may run for more than a second; then it is run again.
TEST(ProgressDisplay, AppearsOnlyOnATerminalAndOnlyAfterASecond) {
  const auto now = std::chrono::steady_clock::now;
  constexpr std::chrono::seconds kShownAfter(1);
  const vel::test::Variable action("UI_ACTION", "fastProgress");
  std::string drawn;
  const auto isDrawnEarlyOrNever = [&] {
    const auto start = now();
    drawn = Tool("ui_child", {}, true).finish();
    return drawn == "next line\r\n" || now() - start < kShownAfter;
  };
  EXPECT_TRUE(vel::test::waitUntil(isDrawnEarlyOrNever));
  EXPECT_EQ(drawn, "next line\r\n");
  action.set("slowProgress");
  const auto before = now();
  Tool slow("ui_child", {}, true), quiet("ui_child", {"-quiet"}, true);
  drawn = slow.readThrough("%");
  EXPECT_GE(now() - before, kShownAfter);
  EXPECT_THAT(drawn, Not(HasSubstr("100%")));
  drawn += slow.finish();
  EXPECT_THAT(drawn,
              EndsWith("\rWorking [##############################] 100%   0:00 left\r\nnext line\r\n"));
  EXPECT_EQ(quiet.finish(), "next line\r\n");
  const auto toFile = vel::test::runChild("ui_child", {});
  EXPECT_EQ(toFile.errors, "next line\n");
}

TEST(ProgressDisplay, DoesNotAppearForInputOfUnknownSize) {
  const fs::path veldump = fs::path(vel::test::ownProgram()).replace_filename("veldump");
  const vel::test::ScratchDirectory directory;
  const std::string output = directory.path("dump");
  const std::string command =
      "(printf a; sleep 1.2; printf b) | '" + veldump.string() + "' -offset 1 >" + output;
  Tool tool("/bin/sh", {"-c", command}, true);
  const std::string shown = tool.finish();
  EXPECT_THAT(shown, HasSubstr("VELDUMP - "));
  EXPECT_THAT(vel::test::readFile(output), testing::StartsWith("00000001: 62 __"));
  EXPECT_THAT(shown, Not(HasSubstr("%")));
}

TEST(TerminalOfTools, ShowsNoControlCharactersOfCatalogs) {
  const vel::test::ScratchDirectory directory;
  std::string bytes = vel::test::readFile("small_catalog.DLL");
  const std::string text("t\0w\0o\0", 6);
  bytes.replace(bytes.find(text), text.size(), std::string("\x1B\0[\0J\0", 6));
  const std::vector<std::string> arguments = {"-cat", directory.write("escape.DLL", bytes), "-list"};
  const std::string shown = Tool("velmsg", arguments).finish();
  EXPECT_THAT(shown, HasSubstr("\t?[J\\nlines\r\n"));
  EXPECT_THAT(shown, Not(HasSubstr("\x1B")));
  const auto piped = vel::test::runChild("velmsg", arguments);
  EXPECT_THAT(piped.output, HasSubstr("\t\x1B[J\\nlines\n"));
}

TEST(Colors, AppearOnTerminalsUnlessTheUserDoesNotWantThem) {
  const vel::test::Variable conventions("UI_CONVENTIONS", "y"), action("UI_ACTION", "style");
  const vel::test::Variable terminal("TERM", "xterm"), unwanted("NO_COLOR", nullptr);
  const std::string colored = "\x1B[32mgood\x1B[0m\r\n", plain = "good\r\n";
  EXPECT_EQ(Tool("ui_child", {}).finish(), colored);
  EXPECT_EQ(Tool("ui_child", {"--color=auto"}).finish(), colored);
  EXPECT_EQ(Tool("ui_child", {"--color=never"}).finish(), plain);
  unwanted.set("1");
  EXPECT_EQ(Tool("ui_child", {}).finish(), plain);
  EXPECT_EQ(Tool("ui_child", {"-color", "always"}).finish(), colored);
  unwanted.set("");
  EXPECT_EQ(Tool("ui_child", {}).finish(), colored);
  terminal.set("dumb");
  EXPECT_EQ(Tool("ui_child", {}).finish(), plain);
  // The bell does ring on a terminal.
  action.set("fatal");
  Tool failing("ui_child", {});
  failing.readThrough("last");
  EXPECT_EQ(failing.readThrough("\a"), "\r\n\a");
}

}  // namespace
