#include "messages/insert_formatter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using vel::messages::expandResourceText;
using vel::messages::expandTableText;

constexpr const char* kInserts[10] = {"one", "two", "three", nullptr, "a\nb%1", "six", "", "8", "9", "ten"};
constexpr const char* kFailed = "<failed>";

/// Into a buffer of exactly this capacity, so that the sanitizer sees a write behind it.
std::string expand(const std::string& text, std::size_t capacity = 4096) {
  std::vector<char> out(capacity, '#');
  const auto result = expandResourceText(text.data(), text.size(), kInserts, out.data(), capacity);
  EXPECT_EQ(capacity == 0 ? 0 : std::strlen(out.data()), result.length) << text;
  return result.complete ? std::string(out.data(), result.length) : kFailed;
}

std::string substitute(const std::string& text, std::size_t maxLength = 4096, std::uint32_t count = 10) {
  std::vector<char> out(maxLength + 1, '#');
  const std::size_t length = expandTableText(text.c_str(), kInserts, count, out.data(), maxLength);
  EXPECT_EQ(std::strlen(out.data()), length) << text;
  return out.data();
}

TEST(ResourceText, FollowsTheSystemsFormatter) {
  struct Row {
    const char* text;
    const char* result;
  };
  const Row rows[] = {
      {"", ""},
      {"plain \xE4  text\t", "plain \xE4  text\t"},
      {"a\nb", "a\r\nb"},
      {"a\rb", "a\r\nb"},
      {"a\r\nb\n", "a\r\nb\r\n"},
      {"a\n\rb", "a\r\n\r\nb"},
      {"a\r\r\nb", "a\r\n\r\nb"},
      {"a%0b", "a"},
      {"a%01", "a"},
      {"%na%n", "\r\na\r\n"},
      {"%ra%tb%bc", "\ra\tb c"},
      {"%%1% %.%!%x%N", "%1 .!xN"},
      {"%\n%\r\n", "\n\r\r\n"},
      {"%1%2-%3", "onetwo-three"},
      {"%5", "a\nb%1"},  // inserts are not looked into
      {"[%7]", "[]"},
      {"%4", "???"},
      {"%10%1", "tenone"},
      {"%100", "ten0"},
      {"%11 %99 %123", "??? ??? ???3"},
      {"%1!s!%2!hs!", "onetwo"},
      {"%1 !s!", "one !s!"},
      {"%1!s!!s!", "one!s!"},
      {"%1!5s!|%1!-5s!|%1!2s!", "  one|one  |one"},
      {"%1!.2s!|%3!8.3s!|%3!-8.3s!|%1!.s!", "on|     thr|thr     |"},
      {"%1!06s!|%1!-06s!|%1!+ #5s!", "000one|one   |  one"},
      {"%11!5s!%4!-5s!|", "  ??????  |"},
      {"%1!d!%1!ls!%1!S!%1!*s!%1!!%1!%s!%1!s%s!%1!.-1s!%1!5!", "???????????????????????????"},
  };
  for (const Row& row : rows) EXPECT_EQ(expand(row.text), row.result) << row.text;
}

TEST(ResourceText, MalformedTextFailsAsAWhole) {
  for (const char* text : {"%", "a%", "%1!s", "%1!", "a %2!-8s", "%%%"})
    EXPECT_EQ(expand(text), kFailed) << text;
}

TEST(ResourceText, ReadsNoFurtherThanItsLength) {
  EXPECT_EQ(expand(std::string("ab\0cd", 5)), "ab");
  char out[16];
  EXPECT_FALSE(expandResourceText("a%1", 2, kInserts, out, sizeof out).complete);
  EXPECT_EQ(expandResourceText("a%12", 3, kInserts, out, sizeof out).length, 4U);
}

TEST(ResourceText, FitsWholeOrNotAtAll) {
  for (const char* text :
       {"abcd", "a%3!3.2s!", "%1d", "d%1", "a%n%t", "\n\n", "%1!4s!", "%1!-4s!", "%2%7%%"}) {
    for (std::size_t capacity = 0; capacity < 8; ++capacity)
      EXPECT_EQ(expand(text, capacity) != kFailed, capacity > 4) << text << " into " << capacity;
  }
  EXPECT_EQ(expand("%1!99999999999999999999999s!"), kFailed);
  EXPECT_EQ(expand("%1!.99999999999999999999999s!"), "one");
  EXPECT_EQ(expand("%1!4095s!").size(), 4095U);
  EXPECT_EQ(expand("%1!4096s!"), kFailed);
}

TEST(TableText, SubstitutesVariables) {
  struct Row {
    const char* text;
    const char* result;
  };
  const Row rows[] = {
      {"", ""},
      {"Percent:%% 1:%1 10:%10", "Percent:% 1:one 10:ten"},
      {"%1%2%%%3", "onetwo%three"},
      {"%4", "???"},
      {"%5", "a\nb%1"},
      {"%x", "???x"},
      {"% 5", "??? 5"},
      {"%-1", "??\?-1"},
      {"%0%00", "??????"},
      {"%01", "one"},
      {"%11 %100 %123", "??? ??? ???"},
      {"%4294967297", "???"},
      {"%18446744073709551617", "???"},
      {"end%", "end???"},
      {"%%%", "%???"},
      {"%1!s!%n\n", "one!s!???n\n"},
  };
  for (const Row& row : rows) EXPECT_EQ(substitute(row.text), row.result) << row.text;
}

TEST(TableText, VariablesBeyondTheCountAreMissing) {
  EXPECT_EQ(substitute("%1 %2", 100, 1), "one ???");
  EXPECT_EQ(substitute("%1", 100, 0), "???");
}

TEST(TableText, IsCutAtTheMaximum) {
  const std::string whole = "a%three???xb";
  for (std::size_t maxLength = 0; maxLength <= whole.size() + 1; ++maxLength)
    EXPECT_EQ(substitute("a%%%3%xb", maxLength), whole.substr(0, maxLength)) << maxLength;
}

}  // namespace
