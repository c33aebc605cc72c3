// Tests walks over the elements of usage strings.
#include "platform/test/test.h"
#include "vel_include/vel_consoleui.h"

namespace {

using vel::test::readTable;

/// Returns the first characters of an element and its properties: s switch, a argument, f free, t tagged,
/// e ellipsis, r requires a value, l requires a list.
std::string describe(const VelClUsageCursor& cursor, const char* usage) {
  // The cursor is at the first position whose text it matches.
  std::size_t start = 0;
  while (usage[start] != '\0' && !cursor.matches(usage + start)) ++start;
  std::size_t end = start + 1;
  while (std::isalnum(static_cast<unsigned char>(usage[end])) != 0) ++end;
  std::string text(usage + start, end - start);
  text += ':';
  text += cursor.isSwitch() ? 's' : 'a';
  EXPECT_NE(cursor.isSwitch(), cursor.isArg());
  if (cursor.isFree()) text += 'f';
  if (cursor.isTagged()) text += 't';
  if (cursor.isArgEllipsis()) text += 'e';
  if (cursor.isSwitch() && cursor.reqArg()) text += 'r';
  if (cursor.isSwitch() && cursor.reqArgEllipsis()) text += 'l';
  return text;
}

std::string walkOn(VelClUsageCursor& cursor, const char* usage) {
  std::string walk;
  for (bool more = cursor.setToFirst(); more; more = cursor.setToNext()) {
    if (!walk.empty()) walk += ' ';
    walk += describe(cursor, usage);
  }
  EXPECT_FALSE(cursor.isValid()) << usage;
  return walk;
}

std::string walkOver(const char* usage) {
  VelClUsageCursor cursor(usage);
  return walkOn(cursor, usage);
}

TEST(UsageCursor, VisitsEveryElement) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/usage_walks.tsv"))
    EXPECT_EQ(walkOver(vel::test::unescaped(row.at(0)).c_str()), row.at(1)) << row.at(0);
}

TEST(UsageCursor, KeepsBracketDepthAndTagForASecondWalk) {
  const char* const rows[][2] = {
      {"<a> (<b>", "<a:a <b:a"}, {"<a> !<b>", "<a:aft <b:aft"}, {"(-a <b>) <c>", "-a:sr <b:a <c:af"}};
  for (const auto& [usage, elements] : rows) {
    VelClUsageCursor cursor(usage);
    walkOn(cursor, usage);
    EXPECT_EQ(walkOn(cursor, usage), elements) << usage;
  }
}

TEST(UsageCursor, MatchesWholeNames) {
  for (int c = 1; c < 256; ++c) {
    const std::string usage = std::string("-ab") + static_cast<char>(c) + "x";
    VelClUsageCursor cursor(usage.c_str());
    cursor.setToFirst();
    // Intentional: a line break does not end a name.
    const bool delimits = std::strchr("[]<>(){}-| ", c) != nullptr;
    EXPECT_EQ(cursor.matchesSwitch("-ab"), delimits) << c;
    EXPECT_EQ(cursor.matches("-ab"), delimits) << c;
  }
  for (const auto& row : readTable(VEL_TEST_DATA "test/switch_names.tsv")) {
    VelClUsageCursor cursor(row[0].c_str());
    EXPECT_TRUE(cursor.setToFirst());
    EXPECT_EQ(cursor.matchesSwitch(row[1].c_str()), row.at(2) == "yes") << row[0] << " and " << row[1];
  }
}

TEST(UsageCursor, RecognizesSwitchesAndDisplayedCharacters) {
  for (const char* text : {"-a", "-", "--", "-x5", "-.", "-\xB2"})
    EXPECT_TRUE(VelClUsageCursor::isSwitchIndicator(text)) << text;
  for (const char* text : {"-0", "-9x", "", "a", "/a", "5"})
    EXPECT_FALSE(VelClUsageCursor::isSwitchIndicator(text)) << text;
  EXPECT_FALSE(VelClUsageCursor::isSwitchIndicator(nullptr));
  for (int c = 0; c < 256; ++c)
    EXPECT_EQ(VelClUsageCursor::isToBeDisplayed(static_cast<char>(c)), c != '(' && c != ')' && c != '"') << c;
  EXPECT_EQ(walkOver(nullptr), "");
}

}  // namespace
