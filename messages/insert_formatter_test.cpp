#include "messages/insert_formatter.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/test/table.h"

namespace {

using vel::messages::expandResourceText;
using vel::messages::expandTableText;
using vel::test::readTable;
using vel::test::unescaped;

constexpr const char* kInserts[10] = {"one", "two", "three", nullptr, "a\nb%1", "six", "", "8", "9", "ten"};
constexpr const char* kFailed = "<failed>";

/// Into a buffer of exactly this capacity, so that the sanitizer sees a write behind it.
std::string expand(const std::string& text, std::size_t capacity = 4096) {
  std::vector<char> out(capacity, '#');
  const auto result = expandResourceText(text.data(), text.size(), kInserts, out.data(), capacity);
  EXPECT_EQ(capacity == 0 ? 0 : std::strlen(out.data()), result.length) << text;
  return result.complete ? std::string(out.data(), result.length) : kFailed;
}

std::string substitute(const std::string& text, std::uint32_t count = 10) {
  std::vector<char> out(4097, '#');
  const std::size_t length = expandTableText(text.c_str(), kInserts, count, out.data(), 4096);
  EXPECT_EQ(std::strlen(out.data()), length) << text;
  return out.data();
}

TEST(ResourceText, FollowsTheSystemsFormatter) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/resource_texts.tsv"))
    EXPECT_EQ(expand(unescaped(row[0])), unescaped(row.at(1))) << row[0];
}

TEST(ResourceText, ReadsNoFurtherThanItsLength) {
  EXPECT_EQ(expand(std::string("ab\0cd", 5)), "ab");
  char out[16];
  EXPECT_FALSE(expandResourceText("a%1", 2, kInserts, out, sizeof out).complete);
  EXPECT_EQ(expandResourceText("a%12", 3, kInserts, out, sizeof out).length, 4U);
}

// More sizes, of both kinds of texts, are fuzz/message_fuzz.cpp's matter.
TEST(ResourceText, FitsWholeOrNotAtAll) {
  EXPECT_EQ(expand("", 0), kFailed);
  EXPECT_EQ(expand("%1!99999999999999999999999s!"), kFailed);
  EXPECT_EQ(expand("%1!.99999999999999999999999s!"), "one");
  EXPECT_EQ(expand("%1!4095s!").size(), 4095U);
  EXPECT_EQ(expand("%1!4096s!"), kFailed);
}

TEST(TableText, SubstitutesVariables) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/table_texts.tsv"))
    EXPECT_EQ(substitute(unescaped(row[0])), unescaped(row.at(1))) << row[0];
  EXPECT_EQ(substitute("%1 %2", 1), "one ???");
  EXPECT_EQ(substitute("%1", 0), "???");
}

}  // namespace
