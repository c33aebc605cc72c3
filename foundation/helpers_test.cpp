#include "vel_include/vel_helpers.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

namespace {

/// The text that a formatter writes; the length it returns is checked.
template <typename Function, typename Number>
std::string formatted(Function function, Number number) {
  char out[32];
  std::memset(out, '#', sizeof out);
  const unsigned int length = function(number, out);
  EXPECT_EQ(length, std::strlen(out));
  return out;
}

TEST(DecimalText, Limits) {
  EXPECT_EQ(formatted(velItoa, INT_MIN), "-2147483648");
  EXPECT_EQ(formatted(velItoa, INT_MAX), "2147483647");
  EXPECT_EQ(formatted(velItoa, -10), "-10");
  EXPECT_EQ(formatted(velItoa, 0), "0");
  EXPECT_EQ(formatted(velLtoa, static_cast<long>(INT_MIN)), "-2147483648");
  EXPECT_EQ(formatted(velULtoa, static_cast<unsigned long>(UINT_MAX)), "4294967295");
  EXPECT_EQ(formatted(velI64toa, LLONG_MIN), "-9223372036854775808");
  EXPECT_EQ(formatted(velI64toa, LLONG_MAX), "9223372036854775807");
  EXPECT_EQ(formatted(velW64toa, ULLONG_MAX), "18446744073709551615");
  // Wide longs count with their low 32 bits.
  EXPECT_EQ(formatted(velLtoa, static_cast<long>(0xFFFF'FFFF'FFFF'FFFBULL)), "-5");
  EXPECT_EQ(formatted(velULtoa, static_cast<unsigned long>(-1L)), "4294967295");
}

TEST(StringHelpers, FindsTheFirstOccurrence) {
  constexpr std::ptrdiff_t kNowhere = -1;
  struct Row {
    const char* text;
    const char* pattern;
    bool ignoreCase;
    std::ptrdiff_t offset;
  };
  const Row rows[] = {
      {"xAbc", "ab", true, 1},
      {"xAbc", "ab", false, kNowhere},
      {"xabab", "ab", false, 1},
      {"xabAb", "aB", true, 1},
      {"aab", "ab", false, 1},
      // The second "a" mismatches "b" and is not tried as a start.
      {"aab", "AB", true, kNowhere},
      {"aaab", "AB", true, 2},
      {"abx", "abxy", true, kNowhere},
      {"x\xE9", "\xE9", true, 1},
      {"", "a", true, kNowhere},
      {"", "", true, 0},
      {"abc", "", true, 0},
      {"abc", "", false, 0},
  };
  for (const Row& row : rows) {
    const char* const found = velStrFind(row.text, row.pattern, row.ignoreCase);
    EXPECT_EQ(found == nullptr ? kNowhere : found - row.text, row.offset)
        << row.pattern << " in " << row.text;
  }
}

TEST(StringHelpers, CountsAndCopies) {
  EXPECT_EQ(velStrCount("C:\\a\\b\\", '\\'), 3u);
  EXPECT_EQ(velStrCount("abc", '\0'), 0u);
  struct Row {
    const char* text;
    char stop;
    const char* copied;
  };
  for (const Row& row : {Row{"key=value", '=', "key"}, {"", '=', ""}, {"=x", '=', ""}, {"abc", '=', "abc"}}) {
    char out[16];
    std::memset(out, '#', sizeof out);
    EXPECT_EQ(velStrCopyUntil(out, row.text, row.stop), std::strlen(row.copied)) << row.text;
    EXPECT_STREQ(out, row.copied);
    EXPECT_EQ(out[std::strlen(row.copied) + 1], '#') << row.text;
  }
}

TEST(ByteOrder, SwapsWholeUnitsInPlace) {
  struct Row {
    void (*convert)(void*, size_t);
    bool swaps;
  };
  const Row rows[] = {
      {velEndianConvertW16LittleToBig, true},   {velEndianConvertW16BigToLittle, true},
      {velEndianConvertW16HostToBig, true},     {velEndianConvertW16BigToHost, true},
      {velEndianConvertW16HostToLittle, false}, {velEndianConvertW16LittleToHost, false},
  };
  for (const Row& row : rows) {
    for (size_t count = 0; count <= 5; ++count) {
      std::string bytes = "abcdef";
      std::string expected = bytes;
      for (size_t at = 0; row.swaps && at + 1 < count; at += 2) std::swap(expected[at], expected[at + 1]);
      row.convert(bytes.data(), count);
      EXPECT_EQ(bytes, expected) << "row " << &row - rows << ", bytes " << count;
    }
  }
}

TEST(Timing, SleepCountsWrapIn32Bits) {
  struct Row {
    void (*sleep)(unsigned long);
    unsigned long count;  ///< years, if it did not wrap
    double seconds;
  };
  const Row rows[] = {
      {velSleepSeconds, 115964117, 0.008},
      {velSleepMinutes, 106157275, 0.032},
      {velSleepHours, 29446773, 0.128},
  };
  for (const Row& row : rows) {
    VelClTiming timing;
    row.sleep(row.count);
    // Some systems' ticks are as long as the shortest of these times.
    EXPECT_GE(timing.elapsed(), row.seconds / 2);
    EXPECT_LT(timing.elapsed(), 60);
  }
}

TEST(Timing, LapsJoinWithoutGap) {
  VelClTiming whole;
  VelClTiming laps;
  const double before = whole.elapsed();
  double sum = 0;
  for (int lap = 0; lap < 1000; ++lap) sum += laps.restart();
  const double end = whole.elapsed();
  EXPECT_LE(sum, end);
  EXPECT_GE(sum + laps.elapsed(), end - before);
}

TEST(Timing, TimeStampFollowsTheClock) {
  VelClTiming timing;
  const auto first = static_cast<uint32_t>(velGetTimeStamp());
  velSleepMilliSeconds(60);
  const uint32_t passed = static_cast<uint32_t>(velGetTimeStamp()) - first;
  EXPECT_GE(passed, 30u);
  EXPECT_LE(passed, timing.elapsed() * 1000 + 30);
}

}  // namespace
