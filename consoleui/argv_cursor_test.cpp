// Tests the cursors over a command line.
#include "platform/test/test.h"
#include "vel_include/vel_consoleui.h"

namespace {

using vel::test::readTable;

/// The command line of "tool", with the words of one text as its arguments.
class CommandLine {
 public:
  explicit CommandLine(const std::string& text, const char* program = "tool") : words_{program} {
    std::istringstream stream(text);
    for (std::string word; stream >> word;) words_.push_back(word);
    for (const std::string& word : words_) pointers_.push_back(word.c_str());
    pointers_.push_back(nullptr);
  }

  int count() const { return static_cast<int>(words_.size()); }
  const char* const* arguments() const { return pointers_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<const char*> pointers_;
};

TEST(ArgvCursor, VisitsTheArgumentsInBothDirections) {
  for (const char* text : {"", "a ", "-a b -5 - -- "}) {
    const CommandLine line(text);
    VelClArgvCursor cursor(line.count(), line.arguments());
    EXPECT_EQ(cursor.isValid(), *text != '\0');
    std::string forward, backward;
    for (bool more = cursor.setToFirst(); more; more = cursor.setToNext())
      forward += std::string(cursor.getAsCString()) + ' ';
    for (bool more = cursor.setToLast(); more; more = cursor.setToPrevious())
      backward.insert(0, std::string(cursor.getAsCString()) + ' ');
    EXPECT_EQ(forward, text);
    EXPECT_EQ(backward, text);
    EXPECT_STREQ(cursor.getArgv0(), "tool");
  }
}

TEST(ArgvCursor, IsInvalidBeforeAndAfterTheArguments) {
  const CommandLine line("-a b"), none("");
  VelClArgvCheckCursor after(line.count(), line.arguments(), "(-a <b>) <c>"), before(after);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(after.setToNext(), i == 0);
    EXPECT_FALSE(before.setToPrevious());
  }
  const VelClArgvCheckCursor empty(none.count(), none.arguments(), "<a>");
  const VelClArgvCheckCursor nothing(0, nullptr, nullptr), negative(-1, none.arguments(), nullptr);
  EXPECT_STREQ(nothing.getArgv0(), "");
  for (const VelClArgvCheckCursor& cursor : {after, before, empty, nothing, negative}) {
    EXPECT_STREQ(cursor.getAsCString(), "");
    EXPECT_THAT((std::array{cursor.isValid(), cursor.isSwitch(), cursor.isArg(), cursor.matches(""),
                            cursor.matches("a"), cursor.isLegal(), cursor.reqArg(), cursor.hasArg(),
                            cursor.isBound(), cursor.isFree(), cursor.isTagged()}),
                testing::Each(false));
  }
}

/// Returns the validity after each step: n to the next, p to the previous, l to the last, f to the first.
std::string validityAfter(VelClArgvCursor& cursor, const std::string& steps) {
  std::string validity;
  for (const char step : steps) {
    const bool valid = step == 'n'   ? cursor.setToNext()
                       : step == 'p' ? cursor.setToPrevious()
                       : step == 'l' ? cursor.setToLast()
                                     : cursor.setToFirst();
    EXPECT_EQ(valid, cursor.isValid()) << steps;
    validity += valid ? '+' : '-';
  }
  return validity;
}

TEST(ArgvCursor, CountsStepsPastTheEnds) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/cursor_steps.tsv")) {
    const std::string &steps = row[1], &all = row[2], &onlyFree = row.at(3);
    const CommandLine line(row[0]);
    VelClArgvCursor plain(line.count(), line.arguments());
    VelClArgvCheckCursor checking(line.count(), line.arguments(), "[-s] <a>");
    VelClArgvFreeCursor free(line.count(), line.arguments(), "[-s] <a>");
    EXPECT_EQ(validityAfter(plain, steps), all) << row[0];
    EXPECT_EQ(validityAfter(checking, steps), all) << row[0];
    EXPECT_EQ(validityAfter(free, steps), onlyFree) << row[0];
  }
}

TEST(ArgvCursor, FindsSwitchesByTheirWholeName) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/switches.tsv")) {
    const CommandLine line(row[0]);
    const char* const name = row[1].c_str();
    const bool isThere = row.at(2) != "(none)";
    VelClArgvCursor cursor(line.count(), line.arguments());
    cursor.setToLast();  // the search begins at the first argument
    EXPECT_EQ(cursor.positionTo(name), isThere) << row[0] << " for " << name;
    EXPECT_EQ(cursor.isValid(), isThere) << row[0] << " for " << name;
    EXPECT_EQ(cursor.matches(name), isThere) << row[0] << " for " << name;
    cursor.setToNext();
    EXPECT_EQ(cursor.getAsCString(), isThere ? row[2] : "") << row[0];
  }
}

/// Returns the properties of each argument: s switch, l legal, r requires a value, h has one, b bound, f
/// free, t tagged.
std::string propertiesOf(const CommandLine& line, const char* usage) {
  std::string answers;
  VelClArgvCheckCursor cursor(line.count(), line.arguments(), usage);
  for (bool more = cursor.setToFirst(); more; more = cursor.setToNext()) {
    if (!answers.empty()) answers += ' ';
    EXPECT_NE(cursor.isSwitch(), cursor.isArg());
    if (cursor.isSwitch()) answers += 's';
    if (cursor.isLegal()) answers += 'l';
    if (cursor.reqArg()) answers += 'r';
    if (cursor.hasArg()) answers += 'h';
    if (cursor.isBound()) answers += 'b';
    if (cursor.isFree()) answers += 'f';
    if (cursor.isTagged()) answers += 't';
  }
  return answers;
}

TEST(ArgvCheckCursor, ClassifiesArgumentsByTheUsage) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/arguments.tsv")) {
    const CommandLine line(row.at(1), "-key");  // the program's name is not a switch
    EXPECT_EQ(propertiesOf(line, vel::test::unescaped(row[0]).c_str()), row.at(2))
        << row[1] << " under " << row[0];
  }
  EXPECT_EQ(propertiesOf(CommandLine("x -x"), nullptr), "f s");
}

}  // namespace
