// Strict conversion: a table of faults and their treatment, with the source of every row split everywhere;
// and for all code pages with a route, that splits change nothing and that written bytes round-trip.
#include "vel_include/vel_strict_conversion.h"

#include "codepage/test/outcome.h"
#include "codepage/test/strict_run.h"
#include "platform/test/test.h"

namespace {

using vel::test::bytesOf;
using Conversion = VelClStrictConversion;
using Policy = Conversion::VelEnPolicy;
using Fault = Conversion::VelEnFault;
using Route = Conversion::VelEnRoute;
using Result = StrictResult;

Policy policyOf(const std::string& name) {
  return name == "stop"   ? Policy::STOP
         : name == "skip" ? Policy::SKIP
         : name[0] == 'r' ? Policy::REPLACE
                          : Policy::ESCAPE;
}

TEST(StrictConversion, FollowsTheTableInEverySplit) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/strict_conversions.tsv")) {
    const std::string& what = row[0];
    if (row[7] == "icu" && !hasIcu()) continue;
    Conversion conversion(VelClCCSID(row[1].c_str()), VelClCCSID(row[2].c_str()), policyOf(row[3]));
    conversion.setNextLineFolding(row[7] == "fold");
    const std::string source = bytesOf(row[4]);
    const Result expected{bytesOf(row[5]), row[6]};
    EXPECT_EQ(convertInPieces(conversion, source, {}), expected) << what;
    for (std::size_t end = 0; end <= source.size(); ++end)
      EXPECT_EQ(convertInPieces(conversion, source, {end}), expected) << what << ", split at " << end;
    EXPECT_EQ(convertInPieces(conversion, source, endsOfPieces(source.size(), 1)), expected) << what;
    // A handler that decides like the policy changes nothing, whatever the policy of the conversion is.
    Conversion other(VelClCCSID(row[1].c_str()), VelClCCSID(row[2].c_str()), Policy::SKIP);
    other.setNextLineFolding(row[7] == "fold");
    FaultList handler(policyOf(row[3]));
    EXPECT_EQ(convertInPieces(other, source, endsOfPieces(source.size(), 1), &handler), expected) << what;
  }
}

TEST(StrictConversion, ReportsEveryFaultToTheHandler) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/strict_faults.tsv")) {
    Conversion conversion(VelClCCSID(row[0].c_str()), VelClCCSID(row[1].c_str()));
    const std::string source = bytesOf(row[2]);
    for (const std::vector<std::size_t>& ends : {{}, endsOfPieces(source.size(), 1)}) {
      FaultList handler(Policy::SKIP);
      convertInPieces(conversion, source, ends, &handler);
      EXPECT_THAT(handler.faults(), testing::ElementsAreArray(row.begin() + 3, row.end()));
      FaultList stopping(Policy::REPLACE, handler.faults().size());
      convertInPieces(conversion, source, ends, &stopping);
      EXPECT_EQ(stopping.faults(), handler.faults());
      EXPECT_TRUE(conversion.hasStopped());
    }
  }
}

// Each character is a fault; the positions are those of the characters, and the time is not that of their
// square.
TEST(StrictConversion, ConvertsNothingAfterAnException) {
  struct : VelClConversionFaultHandler {
    VelClStrictConversion::VelEnPolicy handle(const VelClStrictConversion::VelStFault&) override { throw 1; }
  } handler;
  VelClStrictConversion conversion(VelClCCSID::CCSID_UTF8, VelClCCSID::CCSID_819);
  TextSink sink;
  EXPECT_THROW(conversion.convert("abc\xFF", 4, sink, handler), int);
  EXPECT_FALSE(conversion.convert("X", 1, sink));
  EXPECT_FALSE(conversion.finish(sink));
  EXPECT_EQ(sink.take(), "");
  conversion.restart();
  EXPECT_TRUE(conversion.convert("X", 1, sink));
  EXPECT_TRUE(conversion.finish(sink));
  EXPECT_EQ(sink.take(), "X");
}

TEST(StrictConversion, ReportsTheOffsetsOfManyFaults) {
  std::string source;
  std::vector<std::string> expected;
  for (int i = 0; i < 20'000; ++i) {
    expected.push_back("unmappable " + std::to_string(source.size()) + " 1:" + std::to_string(i + 1) +
                       (i % 2 == 0 ? " U+20AC" : " U+1F600"));
    source += i % 2 == 0 ? "\xE2\x82\xAC" : "\xF0\x9F\x98\x80";
  }
  Conversion conversion(ccsid(1208), ccsid(500));
  FaultList handler(Policy::REPLACE);
  convertInPieces(conversion, source, {}, &handler);
  EXPECT_EQ(handler.faults(), expected);
}

TEST(StrictConversion, ConvertsNothingWithoutARoute) {
  Conversion conversion(ccsid(4), ccsid(1208), Policy::REPLACE);
  EXPECT_FALSE(conversion.isSupported());
  EXPECT_EQ(convertInPieces(conversion, "abc", {}), (Result{"", "clean"}));
  EXPECT_FALSE(Conversion(ccsid(259), ccsid(259)).isSupported());
}

std::vector<int> ccsidsWithARoute(Route (*route)(const VelClCCSID&)) {
  std::vector<int> numbers;
  // Some code pages that ICU has are not in the table but have a name.
  for (int number = 1; number < 0x10000; ++number)
    if ((ccsid(number).isValid() || ccsid(number).getPreferredName() != nullptr) &&
        route(ccsid(number)) != Route::NONE)
      numbers.push_back(number);
  return numbers;
}

TEST(StrictConversion, GivesTheSameResultForSplitSourcesOfAnyCodePage) {
  // Longer than the blocks in which texts are converted.
  std::string source;
  for (unsigned int i = 0; i < 9'000; ++i) source += static_cast<char>(i * 2654435761U >> 15);
  const std::vector<std::size_t> ends = endsOfPieces(source.size(), 40);
  for (const int number : ccsidsWithARoute(&Conversion::getRouteToUcs2)) {
    for (const int target : {1208, 500}) {
      Conversion conversion(ccsid(number), ccsid(target), Policy::ESCAPE);
      const Result whole = convertInPieces(conversion, source, {});
      ASSERT_EQ(convertInPieces(conversion, source, ends), whole) << number << " to " << target;
    }
  }
}

/// Many characters of all kinds.
std::string manyCharacters() {
  std::u16string units;
  for (unsigned int unit = 1; unit < 0x10000; unit += unit < 0x3100 ? 1 : 7)
    if (unit < 0xD800 || unit > 0xDFFF) units += static_cast<char16_t>(unit);
  for (unsigned int low = 0xDC00; low < 0xE000; low += 7) {
    units += char16_t{0xD840};
    units += static_cast<char16_t>(low);
  }
  return unitBytes(units + u"\xD83D\xDE00\xFFFD\xFF01\xFF5E\x301C");
}

TEST(StrictConversion, WritesOnlyBytesThatRoundTrip) {
  const std::string source = manyCharacters();
  for (const int number : ccsidsWithARoute(&Conversion::getRouteFromUcs2)) {
    // A table may map fewer characters than ICU does, and ICU converts to another edition of 954 than from
    // it.
    if (number == 954 ||
        Conversion::getRouteToUcs2(ccsid(number)) != Conversion::getRouteFromUcs2(ccsid(number)))
      continue;
    Conversion there(ccsid(13488), ccsid(number), Policy::SKIP);
    const Result written = convertInPieces(there, source, {4096, 20'001});
    const auto skipped = there.getFaultCount(Fault::NOT_REPRESENTABLE);
    Conversion back(ccsid(number), ccsid(13488), Policy::STOP);
    const Result returned = convertInPieces(back, written.bytes, {written.bytes.size() / 3});
    EXPECT_EQ(returned.faults, "clean") << number;
    EXPECT_GE(returned.bytes.size() + 4 * skipped, source.size()) << number;
    EXPECT_LE(returned.bytes.size() + 2 * skipped, source.size()) << number;
    Conversion again(ccsid(13488), ccsid(number), Policy::STOP);
    EXPECT_EQ(convertInPieces(again, returned.bytes, {}), (Result{written.bytes, "clean"})) << number;
  }
}

}  // namespace
