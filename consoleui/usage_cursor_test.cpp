// Usage strings, element by element.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "vel_include/vel_consoleui.h"

namespace {

/// Where the cursor stands: the suffix of the usage string that it matches up to the end.
std::size_t positionOf(const VelClUsageCursor& cursor, const char* usage) {
  const std::size_t length = std::strlen(usage);
  for (std::size_t at = 0; at < length; ++at)
    if (cursor.matches(usage + at)) return at;
  return length;
}

/// An element's first characters and its answers: s switch, a argument, f free, t tagged, e ellipsis,
/// r takes a value, l takes a list.
std::string describe(const VelClUsageCursor& cursor, const char* usage) {
  const std::size_t start = positionOf(cursor, usage);
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

struct Walk {
  const char* usage;
  const char* elements;
};

void expectWalks(const std::vector<Walk>& walks) {
  for (const Walk& walk : walks) EXPECT_EQ(walkOver(walk.usage), walk.elements) << walk.usage;
}

TEST(UsageCursor, WalksTheTraceControllersUsage) {
  const Walk lines[] = {
      {"(-key <key>) [(-instance <instance>)] [(-file <filename>)]\n",
       "-key:sr <key:a -instance:sr <instance:a -file:sr <filename:a"},
      {"[-display]\n", " -display:s"},
      {"[(-format <string>)] [(-findent <string>)]\n", " -format:sr <string:a -findent:sr <string:a"},
      {"[-fnest] [-fnofhd] [-fssfhd] [-fhex] [-fbin]\n", " -fnest:s -fnofhd:s -fssfhd:s -fhex:s -fbin:s"},
      {"[(-fdetail <detail>)] [(-fcompids <compids>)]\n", " -fdetail:sr <detail:a -fcompids:sr <compids:a"},
      {"[(-fpid <pid>)] [(-ftid <tid>)]\n", " -fpid:sr <pid:a -ftid:sr <tid:a"},
      {"[-verbose]", " -verbose:s"},
  };
  std::string usage;
  std::string elements;
  for (const Walk& line : lines) {
    usage += line.usage;
    elements += line.elements;
  }
  EXPECT_EQ(walkOver(usage.c_str()), elements);
}

TEST(UsageCursor, FindsElements) {
  expectWalks({
      {"", ""},
      {"-5", "-5:af"},
      {"[-5] [-x]", "-5:af -x:s"},
      {"(-a -5)", "-a:sr -5:a"},
      {"[-a|/b]", "-a:s /b:af"},
      {"(-a /b)", "-a:sr /b:a"},
      {"-a.b-c", "-a:s -c:s"},
      {"--a", "-:s -a:s"},
      // A blank has to stand before a word, anywhere since the element before.
      {"word -x", "-x:s"},
      {"-x\nword", "-x:s"},
      {"(word)", ""},
      {" word", "word:af"},
      {" (word)", "word:a"},
      {"-x [b", "-x:s b:af"},
      {"-x[b", "-x:s"},
      {" a|b |c", "a:af c:af"},
      // Blanks inside a placeholder belong to it.
      {"<a b> c", "<a:af c:af"},
      {"<a-b> -c", "<a:af -b:s -c:s"},  // not so a "-"
      // The character behind a single dot is not looked at.
      {"[.-a] -b", "-b:s"},
      {"[.(-a <b>] <c>", "-a:s <b:af <c:af"},
      {"-a [.", "-a:s"},
      {"<a> .. <b>", "<a:af .:afe <b:af"},
      {"<a>.....", "<a:af .:afe"},
      // The tag mark ends with its line.
      {"-a !-b <c>\n-d", "-a:s -b:st <c:aft -d:s"},
      {"! word\n word", "word:aft word:af"},
      // Quoted text holds no elements.
      {"-a \"-b <c>\" -d", "-a:s -d:s"},
      {"-a \"-b <c>\n-d", "-a:s"},
      {"\"", ""},
  });
}

TEST(UsageCursor, TellsWhichSwitchesTakeValues) {
  expectWalks({
      {"-a <b>", "-a:s <b:af"},
      {"(-level <n", "-level:sr <n:a"},
      {"(-a word)", "-a:sr word:a"},
      {"(-a) <b>", "-a:s <b:af"},
      {"(-a [-b <c>])", "-a:s -b:sr <c:a"},
      {"(-a (<b>))", "-a:s <b:a"},
      {"((-a) <b>)", "-a:s <b:a"},
      {"(-a \"<b>\")", "-a:s"},
      {"(-a <b> ...)", "-a:srl <b:a .:ae"},
      {"(-a <b> <c> d ..)", "-a:srl <b:a <c:a d:a .:ae"},
      {"(-a ...)", "-a:srl .:ae"},
      {"(-a <b> . <c>)", "-a:sr <b:a <c:a"},
      {"(-a <b> -c ...)", "-a:sr <b:a -c:srl .:ae"},
      {"(-a <b>) ...", "-a:sr <b:a .:afe"},
      {"(-a <b> (<c>) ...)", "-a:sr <b:a <c:a .:ae"},
      {"(-a <b> <c>", "-a:sr <b:a <c:a"},
      {"-a <b> ...", "-a:s <b:af .:afe"},
  });
}

TEST(UsageCursor, KeepsDepthsAndMarksForASecondWalk) {
  const Walk second[] = {
      {"<a> (<b>", "<a:a <b:a"},
      {"<a> !<b>", "<a:aft <b:aft"},
      {"(-a <b>) <c>", "-a:sr <b:a <c:af"},
  };
  for (const Walk& walk : second) {
    VelClUsageCursor cursor(walk.usage);
    walkOn(cursor, walk.usage);
    EXPECT_EQ(walkOn(cursor, walk.usage), walk.elements) << walk.usage;
  }
}

TEST(UsageCursor, ComparesNamesUpToADelimiter) {
  for (int c = 1; c < 256; ++c) {
    const std::string usage = std::string("-ab") + static_cast<char>(c) + "x";
    VelClUsageCursor cursor(usage.c_str());
    cursor.setToFirst();
    // A line break is not among them. Keep.
    const bool delimits = std::strchr("[]<>(){}-| ", c) != nullptr;
    EXPECT_EQ(cursor.matchesSwitch("-ab"), delimits) << c;
    EXPECT_EQ(cursor.matches("-ab"), delimits) << c;
  }
  struct Row {
    const char* usage;
    const char* argument;
    bool matches;
  };
  const Row rows[] = {
      {"-fhex", "-fhex", true},   {"-fhex", "fhex", true},
      {"-fhex]", "-fhe", false},  {"-fhex]", "-fhexa", false},
      {"-fhex]", "-FHEX", false}, {"-a.b]", "-a.b", true},
      {"-a.b]", "-a", false},     {"-a]", "--a", false},
      {"--a]", "--a", true},      {"--5]", "-5", true},
      {"-5]", "-5", false},       {"-]", "-", true},
      {"-]", "", true},           {"-a]", "", false},
      {"-a", "-a]", false},
  };
  for (const Row& row : rows) {
    VelClUsageCursor cursor(row.usage);
    EXPECT_TRUE(cursor.setToFirst());
    EXPECT_EQ(cursor.matchesSwitch(row.argument), row.matches) << row.usage << " and " << row.argument;
  }
}

TEST(UsageCursor, KnowsSwitchesAndDisplayedCharacters) {
  for (const char* text : {"-a", "-", "--", "-x5", "-.", "-\xB2"})
    EXPECT_TRUE(VelClUsageCursor::isSwitchIndicator(text)) << text;
  for (const char* text : {"-0", "-9x", "", "a", "/a", "5"})
    EXPECT_FALSE(VelClUsageCursor::isSwitchIndicator(text)) << text;
  EXPECT_FALSE(VelClUsageCursor::isSwitchIndicator(nullptr));
  for (int c = 0; c < 256; ++c)
    EXPECT_EQ(VelClUsageCursor::isToBeDisplayed(static_cast<char>(c)), c != '(' && c != ')' && c != '"') << c;
  EXPECT_EQ(walkOver(nullptr), "");
}

/// Asks everything at every stop. False when the walk does not move forward at each step.
bool walkAdvances(const char* usage) {
  VelClUsageCursor cursor(usage);
  const std::size_t length = std::strlen(usage);
  std::size_t steps = 0;
  for (bool more = cursor.setToFirst(); more; more = cursor.setToNext()) {
    if (++steps > length || !cursor.isValid()) return false;
    const bool takesValue = cursor.reqArg();
    if (cursor.reqArgEllipsis() && !takesValue) return false;
    if (cursor.isSwitch() ? cursor.isFree() : cursor.matchesSwitch("-")) return false;
  }
  return !cursor.isValid();
}

TEST(UsageCursor, EveryShortWalkEndsInsideItsText) {
  const std::string alphabet = "-/<>.()[]!\"a5 \n";
  constexpr std::size_t kLongest = 5;
  std::vector<std::size_t> digits;
  while (digits.size() <= kLongest) {
    // Exactly as large as the text, so that a sanitizer sees one byte too many.
    const auto usage = std::make_unique<char[]>(digits.size() + 1);
    std::transform(digits.begin(), digits.end(), usage.get(), [&](std::size_t d) { return alphabet[d]; });
    ASSERT_TRUE(walkAdvances(usage.get())) << usage.get();
    // The next text: count up, and start one longer after the last.
    std::size_t at = 0;
    while (at < digits.size() && ++digits[at] == alphabet.size()) digits[at++] = 0;
    if (at == digits.size()) digits.push_back(0);
  }
}

}  // namespace
