// Tests quoting against the splitters: the library's own, the system's, and that of a real child.
#include "vel_include/vel_quoting.h"

#include "environment/command_line.h"
#include "platform/test/test.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_process.h"

namespace {

using Texts = std::vector<std::string>;
using vel::test::readTexts;

/// All texts of up to three of these characters.
Texts shortTexts() {
  Texts texts = {""};
  for (std::size_t at = 0; at < texts.size(); ++at)
    if (texts[at].size() < 3)
      for (const char c : std::string("a \t\"\\'\n$")) texts.push_back(texts[at] + c);
  return texts;
}

TEST(Quoting, FollowsTheRulesOfTheSplitters) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/quoting.tsv"))
    EXPECT_EQ(row, (Texts{row[0], velQuotedForAddArgument(row[0]), velQuotedForWindows(row[0]),
                          velQuotedForShell(row[0])}));
}

TEST(Quoting, EveryTextRoundTripsThroughTheSystemsSplitter) {
  const bool isWindows = velGetOperatingSystemId() != 0;
  Texts texts = shortTexts();
  for (const auto& row : readTexts(VEL_TEST_DATA "test/quoting.tsv")) texts.push_back(row[0]);
  std::string line;
  for (const std::string& text : texts)
    line += (isWindows ? velQuotedForWindows(text) : velQuotedForShell(text)) + " ";
  EXPECT_EQ(vel::test::splitBySystem(line), texts);
}

TEST(Quoting, EveryTextRoundTripsThroughAddArgument) {
  const Texts texts = shortTexts();
  const vel::test::ScratchDirectory scratch;
  const std::string report = scratch.path("report");
  const vel::test::Variable variable("VEL_TEST_REPORT", report.c_str());
  const auto program = std::filesystem::path(vel::test::ownProgram()).replace_filename("launch_child");
  const VelClExeFile child(program.string().c_str());
  VelClNewSyncProcess process(child);
  process.addArgument(0L);
  std::string line = "prog";
  for (const std::string& text : texts) {
    process.addArgument(velQuotedForAddArgument(text).c_str());
    line += " " + velQuotedForWindows(text);
  }
  const vel::environment::Arguments split(line.c_str());
  EXPECT_EQ(Texts(split.get() + 1, split.get() + split.count()), texts);
  ASSERT_TRUE(process.launch());
  std::string expected;
  for (const std::string& text : texts) expected += '[' + text + "]\n";
  EXPECT_EQ(vel::test::readFile(report), "[0]\n" + expected + "end");
}

TEST(Quoting, WritesAllOrNothing) {
  const std::string text = "a\"b\\";
  for (const auto quote : {velQuoteForAddArgument, velQuoteForWindows, velQuoteForShell}) {
    const std::string whole = velQuoted(text, quote);
    EXPECT_EQ(quote(text.data(), text.size(), nullptr, 0), whole.size());
    for (std::size_t capacity = 1; capacity <= whole.size() + 2; ++capacity) {
      std::string out(whole.size() + 3, '#');
      EXPECT_EQ(quote(text.data(), text.size(), out.data(), capacity), whole.size());
      EXPECT_STREQ(out.c_str(), capacity > whole.size() ? whole.c_str() : "");
      EXPECT_EQ(out.find_first_not_of('#', strlen(out.c_str()) + 1), std::string::npos) << capacity;
    }
    char out[8] = "#";
    EXPECT_EQ(quote("a\0b", 3, out, sizeof out), 0U);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(quote(nullptr, 5, out, sizeof out), 2U);
  }
}

}  // namespace
