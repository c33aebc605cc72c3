#include "vel_include/vel_helpers.h"

#include <climits>

#include "platform/test/test.h"

namespace {

/// Returns the text that a formatter writes, and checks the length that it returns.
template <typename Function, typename Number>
std::string formatted(Function function, Number number) {
  char out[32];
  std::memset(out, '#', sizeof out);
  const unsigned int length = function(number, out);
  EXPECT_EQ(length, std::strlen(out));
  return out;
}

TEST(DecimalText, HasEveryNumberOfDigits) {
  for (unsigned long long power = 1; power < ULLONG_MAX / 10; power *= 10)
    for (const unsigned long long number : {power * 10, power * 10 - 1, power + power / 7}) {
      EXPECT_EQ(formatted(velW64toa, number), std::to_string(number));
      EXPECT_EQ(formatted(velI64toa, static_cast<long long>(0 - number)),
                std::to_string(static_cast<long long>(0 - number)));
      EXPECT_EQ(formatted(velItoa, static_cast<int>(number)), std::to_string(static_cast<int>(number)));
    }
}

TEST(DecimalText, HoldsTheLimitsOfEveryType) {
  EXPECT_EQ(formatted(velItoa, INT_MIN), "-2147483648");
  EXPECT_EQ(formatted(velItoa, INT_MAX), "2147483647");
  EXPECT_EQ(formatted(velItoa, -10), "-10");
  EXPECT_EQ(formatted(velItoa, 0), "0");
  EXPECT_EQ(formatted(velLtoa, static_cast<long>(INT_MIN)), "-2147483648");
  EXPECT_EQ(formatted(velULtoa, static_cast<unsigned long>(UINT_MAX)), "4294967295");
  EXPECT_EQ(formatted(velI64toa, LLONG_MIN), "-9223372036854775808");
  EXPECT_EQ(formatted(velI64toa, LLONG_MAX), "9223372036854775807");
  EXPECT_EQ(formatted(velW64toa, ULLONG_MAX), "18446744073709551615");
  // Only the low 32 bits of a wider long count.
  EXPECT_EQ(formatted(velLtoa, static_cast<long>(0xFFFF'FFFF'FFFF'FFFBULL)), "-5");
  EXPECT_EQ(formatted(velULtoa, static_cast<unsigned long>(-1L)), "4294967295");
}

// When case is ignored, the second "a" of "aab" is compared with "B", mismatches, and is not tried as a
// start.
TEST(CaseInsensitiveSearch, FindsTheFirstOccurrence) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/searches.tsv")) {
    const char* const found = velStrFind(row[0].c_str(), row[1].c_str(), row.at(2) == "yes");
    EXPECT_EQ(found == nullptr ? "-" : std::to_string(found - row[0].c_str()), row.at(3))
        << row[1] << " in " << row[0];
  }
}

/// Searches by the documented rule: a character that mismatches is not compared again.
std::ptrdiff_t offsetByTheRule(const std::string& text, const std::string& pattern) {
  std::size_t met = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    met = std::tolower(text[i]) == std::tolower(pattern[met]) ? met + 1 : 0;
    if (met == pattern.size()) return static_cast<std::ptrdiff_t>(i + 1 - met);
  }
  return -1;
}

// Long texts are searched in blocks; runs of equal letters cross their borders.
TEST(CaseInsensitiveSearch, FindsTheSameInLongTexts) {
  std::mt19937 random(4711);
  for (int round = 0; round < 20'000; ++round) {
    const char* const letters = round % 2 == 0 ? "aAab" : "abBxyyyyyyyyyyyy";
    const auto letter = [&] { return letters[random() % std::strlen(letters)]; };
    std::string text(480 + random() % 64, 'x'), pattern;
    for (std::size_t rest = random() % 300; rest > 0; --rest) text += letter();
    for (std::size_t rest = 1 + random() % 5; rest > 0; --rest) pattern += letter();
    const char* const found = velStrFind(text.c_str(), pattern.c_str(), true);
    ASSERT_EQ(found == nullptr ? -1 : found - text.c_str(), offsetByTheRule(text, pattern))
        << pattern << " in " << text;
  }
  // The second "a" of "aab" is consumed as a mismatch, also where the last block ends between the two. The
  // match after the terminator is not part of the text.
  for (std::size_t length = 600; length < 632; ++length)
    for (const char* const end : {"aab", "a"}) {
      const std::string text = std::string(length, 'x') + end + '\0' + "xab";
      EXPECT_EQ(velStrFind(text.c_str(), "ab", true), nullptr) << end << " at " << length;
    }
}

TEST(StringHelpers, CountNoTerminatorAndCopyUntilTheStop) {
  EXPECT_EQ(velStrCount("abc", '\0'), 0u);
  const char* const rows[][2] = {{"key=value", "key"}, {"abc", "abc"}, {"=x", ""}, {"", ""}};
  for (const auto& [text, copied] : rows) {
    std::string out(16, '#');
    EXPECT_EQ(velStrCopyUntil(out.data(), text, '='), std::strlen(copied)) << text;
    EXPECT_EQ(out, (copied + std::string(1, '\0')).append(15 - std::strlen(copied), '#'));
  }
}

TEST(ByteOrder, IsSwappedInWholeUnits) {
  const auto converted = [](void (*convert)(void*, size_t), size_t count) {
    std::string bytes = "abcdef";
    convert(bytes.data(), count);
    return bytes;
  };
  const char* const swapped[] = {"abcdef", "abcdef", "bacdef", "bacdef", "badcef", "badcef"};
  for (size_t count = 0; count <= 5; ++count) {
    for (const auto stays : {velEndianConvertW16HostToLittle, velEndianConvertW16LittleToHost})
      EXPECT_EQ(converted(stays, count), "abcdef");
    for (const auto swaps : {velEndianConvertW16BigToLittle, velEndianConvertW16HostToBig,
                             velEndianConvertW16LittleToBig, velEndianConvertW16BigToHost})
      EXPECT_EQ(converted(swaps, count), swapped[count]) << count;
  }
}

TEST(LibraryIdentity, IsTheSameInEveryBuild) {
  EXPECT_STREQ(velLibraryGetLevel(), "VELLibR5-24");
  EXPECT_STREQ(velLibraryGetTod(), "Jan 14 2009");
  EXPECT_TRUE(velLibraryIsShipCode());
}

TEST(Timing, SleepConvertsToMillisecondsModulo32Bits) {
  // Without the wrap these counts would be years.
  const std::tuple<void (*)(unsigned long), unsigned long, double> rows[] = {
      {velSleepSeconds, 115964117, 0.008},
      {velSleepHours, 29446773, 0.128},
      {velSleepMinutes, 106157275, 0.032}};
  for (const auto& [sleep, count, seconds] : rows) {
    VelClTiming timing;
    sleep(count);
    // On some systems a tick is as long as the shortest of these times.
    EXPECT_GE(timing.elapsed(), seconds / 2);
  }
}

TEST(Timing, LapsFollowEachOtherWithoutGap) {
  const auto start = std::chrono::steady_clock::now();
  VelClTiming whole, laps;
  const double before = whole.elapsed();
  const std::chrono::duration<double> most = std::chrono::steady_clock::now() - start;
  EXPECT_LE(before, most.count() + 0.1);
  double sum = 0;
  for (int lap = 0; lap < 1000; ++lap) sum += laps.restart();
  const double end = whole.elapsed();
  EXPECT_LE(sum, end);
  EXPECT_GE(sum + laps.elapsed(), end - before);
}

TEST(Timing, TimeStampCountsMilliseconds) {
  VelClTiming timing;
  const auto first = static_cast<uint32_t>(velGetTimeStamp());
  velSleepMilliSeconds(60);
  const uint32_t passed = static_cast<uint32_t>(velGetTimeStamp()) - first;
  EXPECT_GE(passed, 30u);
  EXPECT_LE(passed, timing.elapsed() * 1000 + 30);
}

}  // namespace
