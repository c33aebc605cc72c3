// Tests the expansion of inserts in texts of libraries and tables.
#include "messages/insert_formatter.h"

#include "platform/test/test.h"

namespace {

using vel::messages::expandResourceText;
using vel::messages::expandTableText;
using vel::test::readTexts;

constexpr const char* kInserts[10] = {"one", "two", "three", nullptr, "a\nb%1", "six", "", "8", "9", "ten"};
constexpr const char* kFailed = "<failed>";

std::string expand(const std::string& text, std::size_t capacity = 4096) {
  std::string out(capacity + 1, '#');
  const auto result = expandResourceText(text.data(), text.size(), kInserts, out.data(), capacity);
  EXPECT_EQ(out[capacity], '#') << text;
  EXPECT_EQ(capacity == 0 ? 0 : std::strlen(out.data()), result.length) << text;
  return result.complete ? out.substr(0, result.length) : kFailed;
}

std::string substitute(const std::string& text, std::size_t room = 4096, std::uint32_t count = 10) {
  std::string out(room + 2, '#');
  const std::size_t length = expandTableText(text.c_str(), kInserts, count, out.data(), room);
  EXPECT_EQ(out[room + 1], '#') << text;
  EXPECT_EQ(std::strlen(out.data()), length) << text;
  return out.substr(0, length);
}

TEST(ResourceText, FollowsTheSystemsFormatterWhereTheResultFits) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/resource_texts.tsv"))
    for (std::size_t capacity = 0; capacity <= row.at(1).size() + 1; ++capacity)
      EXPECT_EQ(expand(row[0], capacity), capacity > row[1].size() ? row[1] : kFailed)
          << row[0] << " in " << capacity;
}

TEST(ResourceText, EndsAtItsLength) {
  char out[16];
  EXPECT_FALSE(expandResourceText("a%1", 2, kInserts, out, sizeof out).complete);
  EXPECT_EQ(expandResourceText("a%12", 3, kInserts, out, sizeof out).length, 4U);
}

TEST(ResourceText, FitsWholeOrNotAtAllWithAnyWidth) {
  EXPECT_EQ(expand("%1!99999999999999999999999s!"), kFailed);
  EXPECT_EQ(expand("%1!.99999999999999999999999s!"), "one");
  EXPECT_EQ(expand("%1!4095s!").size(), 4095U);
  EXPECT_EQ(expand("%1!4096s!"), kFailed);
}

TEST(TableText, SubstitutesVariablesAndCutsTheResult) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/table_texts.tsv"))
    for (std::size_t room = 0; room <= row.at(1).size() + 1; ++room)
      EXPECT_EQ(substitute(row[0], room), row[1].substr(0, room)) << row[0] << " in " << room;
  EXPECT_EQ(substitute("%1 %2", 4096, 1), "one ???");
  EXPECT_EQ(substitute("%1", 4096, 0), "???");
}

}  // namespace
