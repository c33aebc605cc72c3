// Tests how command lines are built, and the arguments that real children receive.
#include "environment/command_line.h"
#include "platform/test/test.h"
#include "platform/test/watched_memory.h"
#include "vel_include/vel_process.h"

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;
using vel::test::readTexts;
using vel::test::Variable;

constexpr unsigned long kFileNotFound = 2, kNotLaunched = PROCESS_COULD_NOT_LAUNCH;

class NewProcess : public testing::Test {
 protected:
  std::string report() const { return vel::test::readFile(reportPath_); }

  /// The arguments that the child received, without the first.
  Texts arguments() const {
    std::istringstream lines(report());
    Texts texts;
    for (std::string line; std::getline(lines, line);) texts.push_back(line);
    if (texts.size() < 2 || texts.back() != "end") return {"(none)"};
    return {texts.begin() + 1, texts.end() - 1};
  }

  const fs::path childPath_ = fs::path(vel::test::ownProgram()).replace_filename("launch_child");
  const VelClExeFile child_{childPath_.string().c_str()};

 private:
  vel::test::ScratchDirectory scratch_;
  std::string reportPath_ = scratch_.path("report");
  Variable variable_{"VEL_TEST_REPORT", reportPath_.c_str()};
};

/// Gives access to the command line.
class Unlaunched : public VelClNewProcessABase {
 public:
  explicit Unlaunched(const char* program) : VelClNewProcessABase(VelClExeFile(program)) {}
  bool launch() override { return false; }
  char* line() { return getArgs(); }
  const char* lineAtLaunch() {
    prepareLaunch();
    return line();
  }
};

TEST(CommandLine, GrowsByDoublingAndStaysTerminated) {
  const vel::test::WatchedMemory memory;
  Unlaunched process("absent");
  std::string expected = "absent.EXE";
  for (int count = 0; count < 500; ++count) {
    process.addArgument("x");
    EXPECT_EQ(process.line(), expected += " x");
  }
  EXPECT_LT(memory.allocations, 12);
  // A derived class may have written over the terminator.
  process.line()[expected.size()] = '!';
  EXPECT_EQ(process.lineAtLaunch(), expected);
}

TEST(CommandLine, HasQuotesAroundArgumentsWithBlanks) {
  Unlaunched process("absent");
  std::string expected = "absent.EXE";
  EXPECT_EQ(process.line(), expected);
  // Intentional: only one backslash at the end is doubled, however many there are.
  for (const auto& row : readTexts(VEL_TEST_DATA "test/quoted.tsv")) {
    process.addArgument(row[0].c_str());
    EXPECT_EQ(process.line(), expected += row.at(1));
  }
  process.addArgument(nullptr);
  process.addArgument(-5L);
  process.addArgument(4294967295UL);
  EXPECT_EQ(process.getArgumentCount(), 13U);
  const std::string longText(5000, 'x');
  process.addArgument(longText.c_str());
  expected += " -5 4294967295 " + longText;
  process.addArgument(process.line());
  EXPECT_EQ(process.line(), expected + " \"" + expected + "\"");
  EXPECT_STREQ(Unlaunched("my prog").line(), "\"my prog.EXE\"");
}

TEST(CommandLine, IsSplitIntoArguments) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/command_lines.tsv")) {
    const vel::environment::Arguments arguments(row[0].c_str());
    ASSERT_EQ(arguments.get()[arguments.count()], nullptr) << row[0];
    EXPECT_EQ(Texts(arguments.get(), arguments.get() + arguments.count()), Texts(row.begin() + 1, row.end()))
        << row[0];
  }
}

// Backslashes are literal unless a quote follows: then two of them are one, and an odd one makes the quote
// literal.
TEST_F(NewProcess, ArgumentsAreSplitAsTheWindowsRuntimeDoes) {
  long code = 256;
  for (const auto& row : readTexts(VEL_TEST_DATA "test/arguments.tsv")) {
    VelClNewSyncProcess process(child_);
    process.addArgument(--code);
    std::istringstream pieces(row[0]);
    for (std::string piece; std::getline(pieces, piece, ' ');) process.addArgument(piece.c_str());
    for (int times = 0; times < 2; ++times) EXPECT_TRUE(process.launch()) << row[0];
    EXPECT_EQ(process.getResult(), static_cast<unsigned long>(code));
    EXPECT_EQ(process.getLastError().getErrorId(), 0UL);
    Texts expected(row.begin() + 1, row.end());
    for (std::string& text : expected) text = '[' + text + ']';
    EXPECT_EQ(arguments(), expected) << row[0];
  }
}

TEST_F(NewProcess, DetachedProgramsRunUntilTheyAreEnded) {
  for (const bool newConsole : {false, true}) {
    VelClNewAsyncProcess process(child_);
    process.setNewConsole(newConsole);
    process.addArgument("wait");
    process.addArgument("for me");
    ASSERT_TRUE(process.launch());
    EXPECT_EQ(process.getLastError().getErrorId(), 0UL);
    const auto id = static_cast<unsigned int>(process.getResult());
    EXPECT_NE(id, VelClProcess().getProcessId());
    EXPECT_TRUE(vel::test::waitUntil([this] { return report().ends_with("end"); }));
    EXPECT_EQ(arguments(), Texts{"[for me]"});
    EXPECT_FALSE(vel::test::endsWithin(id, 0));
    VelClProcess running(id);
    EXPECT_TRUE(running.kill());
    EXPECT_TRUE(vel::test::endsWithin(id, vel::test::kTimeLimitMs));
    // Intentional: ending a process that has ended counts as success.
    EXPECT_TRUE(running.kill());
    EXPECT_EQ(running.getLastError().getErrorId(), 0UL);
  }
  EXPECT_TRUE(VelClProcess(0).kill());
}

TEST_F(NewProcess, ProgramsAreSearchedAlongPathUnlessTheyExist) {
  const Variable path("PATH", childPath_.parent_path().string().c_str());
  const VelClExeFile found("launch_child");
  EXPECT_TRUE(found.isFoundInSystemPath());
  EXPECT_TRUE(found.getFilename().isAbsolute());
  EXPECT_TRUE(found.isExistent());
  const std::string full = found.getAsCString(), there = childPath_.string() + ".EXE";
  const struct {
    const char* usePath;
    std::string name;
    bool isFound, launches;
    std::string nameAfterwards;
  } rows[] = {{"0", "nowhere\\launch_child", false, false, "nowhere\\launch_child.EXE"},
              {"yes", "nowhere\\launch_child", true, true, full},
              {"yes", "nowhere\\vel_no_such_program", false, false, "vel_no_such_program.EXE"},
              {"yes", there, false, true, there}};
  for (const auto& row : rows) {
    const Variable usePath("VEL_NEWPROCESS_USEPATH", row.usePath);
    const VelClExeFile exe(row.name.c_str());
    EXPECT_EQ(exe.isFoundInSystemPath(), row.isFound) << row.usePath << ' ' << row.name;
    EXPECT_EQ(exe.getAsCString(), row.nameAfterwards);
    VelClNewSyncProcess process(exe);
    process.addArgument(4L);
    EXPECT_EQ(process.launch(), row.launches) << row.name;
    EXPECT_EQ(process.getResult(), row.launches ? 4 : kFileNotFound);
    EXPECT_EQ(process.getLastError().getErrorId(), row.launches ? 0UL : kNotLaunched);
    EXPECT_EQ(process.getLastError().errorClass,
              row.launches ? VelEnErrorClass::UNKNOWN : VelEnErrorClass::UNKNOWN_PROCESS);
    if (row.launches) continue;
    VelClNewAsyncProcess detached(exe);
    EXPECT_FALSE(detached.launch());
    EXPECT_EQ(detached.getLastError().getErrorId(), kNotLaunched);
  }
}

}  // namespace
