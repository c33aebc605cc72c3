#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/process_state.h"
#include "platform/test/scratch_directory.h"
#include "process/test/command_lines.h"
#include "vel_include/vel_process.h"

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr unsigned long kFileNotFound = 2;

/// Sets a variable as long as it lives.
class TemporaryVariable {
 public:
  TemporaryVariable(const char* name, const std::string& value) : variable_(query(name)) {
    variable_.setNewValue(value.c_str());
  }
  TemporaryVariable(const TemporaryVariable&) = delete;
  TemporaryVariable& operator=(const TemporaryVariable&) = delete;
  ~TemporaryVariable() { variable_.setNewValue(before_.c_str()); }

 private:
  VelClEnvironmentVariable query(const char* name) {
    const char* const value = VelClEnvironmentVariableQueryOnly(name).getValue();
    before_ = value == nullptr ? "" : value;
    return {name, before_.c_str()};
  }

  std::string before_;
  VelClEnvironmentVariable variable_;
};

std::string childPath() {
  return (fs::path(vel::test::ownProgram()).parent_path() / "launch_child").string();
}

class NewProcess : public testing::Test {
 protected:
  /// What the child wrote so far.
  std::string report() const { return vel::test::readFile(reportPath_); }

  /// The arguments that the child got, without the first.
  Texts arguments() const {
    std::istringstream lines(report());
    Texts texts;
    for (std::string line; std::getline(lines, line);) texts.push_back(line);
    EXPECT_GE(texts.size(), 2U);
    if (texts.size() < 2) return {};
    EXPECT_EQ(texts.back(), "end");
    return {texts.begin() + 1, texts.end() - 1};
  }

  bool waitForReport() const {
    using Clock = std::chrono::steady_clock;
    for (const auto limit = Clock::now() + std::chrono::seconds(60); Clock::now() < limit;) {
      if (report().ends_with("end")) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
  }

  const VelClExeFile& child() const { return child_; }

 private:
  vel::test::ScratchDirectory scratch_;
  std::string reportPath_ = scratch_.path("report");
  TemporaryVariable variable_{"VEL_TEST_REPORT", reportPath_};
  VelClExeFile child_{childPath().c_str()};
};

/// Shows the command line.
class Unlaunched : public VelClNewProcessABase {
 public:
  using VelClNewProcessABase::VelClNewProcessABase;
  explicit Unlaunched(const VelClExeFile& exe) : VelClNewProcessABase(exe) {}
  bool launch() override { return false; }
  const char* line() {
    prepareLaunch();
    return getArgs();
  }
};

TEST_F(NewProcess, TheCommandLineQuotesBlanksOnly) {
  const VelClExeFile exe("absent");
  Unlaunched process(exe);
  EXPECT_STREQ(process.line(), "absent.EXE");
  std::string expected = "absent.EXE";
  struct Row {
    const char* text;
    const char* written;
  };
  const Row rows[] = {
      {"a b", R"( "a b")"},
      {"c", " c"},
      {R"(d e\)", R"( "d e\\")"},
      {R"(d e\\)", R"( "d e\\\")"},
      {R"(f\)", R"( f\)"},
      {"g\th", " g\th"},
      {R"(i"j)", R"( i"j)"},
      {R"(k "l)", R"( "k "l")"},
      {"", " "},
      {" ", R"( " ")"},
      {nullptr, ""},
  };
  unsigned int count = 1;
  for (const Row& row : rows) {
    process.addArgument(row.text);
    expected += row.written;
    if (row.text != nullptr) ++count;
    EXPECT_EQ(process.line(), expected);
    EXPECT_EQ(process.getArgumentCount(), count);
  }
  process.addArgument(-5L);
  process.addArgument(4294967295UL);
  EXPECT_EQ(process.line(), expected + " -5 4294967295");
  const std::string longText(5000, 'x');
  process.addArgument(longText.c_str());
  expected += " -5 4294967295 " + longText;
  process.addArgument(process.line());
  EXPECT_EQ(process.line(), expected + " \"" + expected + "\"");
  const VelClExeFile blank("my prog");
  EXPECT_STREQ(Unlaunched(blank).line(), "\"my prog.EXE\"");
}

TEST_F(NewProcess, ExitCodesArrive) {
  for (const long code : {0L, 3L, 255L}) {
    VelClNewSyncProcess process(child());
    process.addArgument(code);
    process.addArgument("again");
    for (int times = 0; times < 2; ++times) {
      EXPECT_TRUE(process.launch());
      EXPECT_EQ(process.getResult(), static_cast<unsigned long>(code));
      EXPECT_EQ(process.getLastError().getErrorId(), 0UL);
      EXPECT_EQ(arguments(), Texts{"[again]"});
    }
  }
}

TEST_F(NewProcess, ArgumentsArriveAsTheRuntimeSplitsThem) {
  struct Row {
    Texts given;
    Texts arrived;
  };
  const Row rows[] = {
      {{"a b", " ", "c"}, {"[a b]", "[ ]", "[c]"}},
      {{R"(C:\my dir\)", R"(C:\dir\)", "x"}, {R"([C:\my dir\])", R"([C:\dir\])", "[x]"}},
      // Two back-slashes at the end take the closing quote into the text.
      {{R"(a b\\)"}, {R"([a b\"])"}},
      {{"", "x", "", R"("")"}, {"[x]", "[]"}},
      {{"a\tb", R"("c)", R"(d")", R"(\"e\")"}, {"[a]", "[b]", "[c d]", R"(["e"])"}},
      {{R"(say "hi" now)"}, {"[say hi now]"}},
      {{"*", "$HOME", "%PATH%", "a;b", "'c'"}, {"[*]", "[$HOME]", "[%PATH%]", "[a;b]", "['c']"}},
  };
  for (const Row& row : rows) {
    VelClNewSyncProcess process(child());
    process.addArgument(0L);
    for (const std::string& text : row.given) process.addArgument(text.c_str());
    ASSERT_TRUE(process.launch()) << row.given.front();
    EXPECT_EQ(process.getResult(), 0UL);
    EXPECT_EQ(arguments(), row.arrived) << row.given.front();
  }
}

// All rows in one child: what one leaves behind would show in the next.
TEST_F(NewProcess, WholeCommandLinesAreSplitAsTheTableSays) {
  for (const auto& [line, expected] : vel::test::kCommandLines) {
    VelClNewSyncProcess process(child());
    process.addArgument(0L);
    std::istringstream pieces(line);
    for (std::string piece; std::getline(pieces, piece, ' ');) process.addArgument(piece.c_str());
    ASSERT_TRUE(process.launch()) << line;
    Texts arrived;
    for (const std::string& text : expected) arrived.push_back('[' + text + ']');
    EXPECT_EQ(arguments(), arrived) << line;
  }
}

TEST_F(NewProcess, MissingProgramsAreNotFound) {
  const VelClExeFile exe("vel_no_such_program");
  EXPECT_FALSE(exe.isFoundInSystemPath());
  EXPECT_STREQ(exe.getAsCString(), "vel_no_such_program.EXE");
  VelClNewSyncProcess waited(exe);
  VelClNewAsyncProcess detached(exe);
  for (VelClNewProcessABase* process :
       {static_cast<VelClNewProcessABase*>(&waited), static_cast<VelClNewProcessABase*>(&detached)}) {
    EXPECT_FALSE(process->launch());
    EXPECT_EQ(process->getResult(), kFileNotFound);
    EXPECT_EQ(process->getLastError().getErrorId(), static_cast<unsigned long>(PROCESS_COULD_NOT_LAUNCH));
    EXPECT_EQ(process->getLastError().errorClass, VelEnErrorClass::UNKNOWN_PROCESS);
  }
}

TEST_F(NewProcess, DetachedProgramsRunUntilTheyAreEnded) {
  for (const bool newConsole : {false, true}) {
    VelClNewAsyncProcess process(child());
    EXPECT_FALSE(process.hasNewConsole());
    process.setNewConsole(newConsole);
    process.addArgument("wait");
    process.addArgument("for me");
    ASSERT_TRUE(process.launch());
    EXPECT_EQ(process.getLastError().getErrorId(), 0UL);
    const auto id = static_cast<unsigned int>(process.getResult());
    EXPECT_NE(id, VelClProcess().getProcessId());
    EXPECT_TRUE(waitForReport());
    EXPECT_EQ(arguments(), Texts{"[for me]"});
    EXPECT_TRUE(vel::test::isRunning(id));
    VelClProcess running(id);
    EXPECT_TRUE(running.kill());
    EXPECT_TRUE(vel::test::waitForEnd(id));
    // Now it is nobody's identifier, which counts as success.
    EXPECT_TRUE(running.kill());
    EXPECT_EQ(running.getLastError().getErrorId(), 0UL);
  }
  EXPECT_TRUE(VelClProcess(0).kill());
}

TEST_F(NewProcess, ProgramsAreSearchedAlongPath) {
  const std::string directory = fs::path(childPath()).parent_path().string();
  const TemporaryVariable path("PATH", directory);
  const VelClExeFile found("launch_child");
  EXPECT_TRUE(found.isFoundInSystemPath());
  EXPECT_TRUE(found.getFilename().isAbsolute());
  EXPECT_TRUE(found.isExistent());
  struct Row {
    const char* usePath;
    std::string name;
    bool isFound;
    bool launches;
    std::string nameAfterwards;
  };
  const std::string full = found.getAsCString();
  const Row rows[] = {
      {"", "nowhere\\launch_child", false, false, "nowhere\\launch_child.EXE"},
      {"0", "nowhere\\launch_child", false, false, "nowhere\\launch_child.EXE"},
      {"yes", "nowhere\\launch_child", true, true, full},
      {"yes", "nowhere\\vel_no_such_program", false, false, "vel_no_such_program.EXE"},
      // A program that is there is not searched.
      {"yes", childPath() + ".EXE", false, true, childPath() + ".EXE"},
  };
  for (const Row& row : rows) {
    const TemporaryVariable usePath("VEL_NEWPROCESS_USEPATH", row.usePath);
    const VelClExeFile exe(row.name.c_str());
    EXPECT_EQ(exe.isFoundInSystemPath(), row.isFound) << row.usePath << ' ' << row.name;
    EXPECT_EQ(exe.getAsCString(), row.nameAfterwards);
    VelClNewSyncProcess process(exe);
    process.addArgument(4L);
    EXPECT_EQ(process.launch(), row.launches) << row.name;
    EXPECT_EQ(process.getResult() == 4, row.launches) << process.getResult();
  }
}

}  // namespace
