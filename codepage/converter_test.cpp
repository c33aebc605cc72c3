// The converter classes: sizes, ways, two stages, errors and memory.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "codepage/test/conversion_outcome.h"
#include "vel_include/vel_memmgr.h"

namespace {

using namespace std::string_literals;

using CodePageConverter = VelClCodePage2CodePageConverter;

TEST(Converter, TellsMaximumSizes) {
  const struct {
    int from;
    int to;
    std::size_t size;
    std::size_t expectedForSize;
    std::size_t expectedForLength;
  } rows[] = {
      {850, 850, 7, 7, 14},   {1392, 1208, 10, 20, 50}, {13488, 1208, 7, 9, 35},  {13488, 850, 7, 3, 14},
      {37, 1208, 10, 30, 50}, {37, 850, 10, 10, 20},    {65500, 37, 9, 4, 18},    {37, 930, 5, 10, 10},
      {37, 1392, 5, 10, 20},  {1208, 13488, 5, 10, 10}, {13488, 65500, 7, 7, 14}, {65501, 13488, 7, 7, 14},
      {13488, 930, 7, 6, 14},
  };
  for (const auto& row : rows) {
    const CodePageConverter converter(ccsid(row.from), ccsid(row.to));
    EXPECT_EQ(converter.getMaximumSizeForSize(row.size), row.expectedForSize) << row.from << " " << row.to;
    EXPECT_EQ(converter.getMaximumSizeForLength(row.size), row.expectedForLength)
        << row.from << " " << row.to;
  }
  EXPECT_EQ(VelClCodePage2UTF8Converter(ccsid(1392)).getMaximumSizeForSize(10), 20U);
  EXPECT_EQ(VelClUnicode2CodePageConverter(ccsid(1208)).getMaximumSizeForSize(7), 9U);
  EXPECT_EQ(VelClUnicode2CodePageConverter(ccsid(1392)).getMaximumSizeForLength(7), 28U);
  EXPECT_EQ(VelClCodePage2UnicodeConverter(ccsid(1392)).getMaximumSizeForLength(7), 28U);
  EXPECT_EQ(VelClCodePage2UnicodeConverter(ccsid(1392)).getMaximumSizeForSize(7), 14U);
  EXPECT_EQ(VelClCodePage2UnicodeConverter(ccsid(1200)).getMaximumSizeForSize(7), 7U);
}

TEST(Converter, WithoutAWayConvertsNothing) {
  const CodePageConverter fromUnknown(ccsid(4), ccsid(1208));
  const CodePageConverter toUnknown(ccsid(37), ccsid(4));
  const VelClCodePage2UnicodeConverter toUnicode{ccsid(4)};
  const VelClUnicode2CodePageConverter fromUnicode{ccsid(0)};
  const Outcome unsupported{"", 0, CPCONVERTER_UNSUPPORTED, VelEnErrorClass::INCONSISTENT_SITUATION};
  for (const VelClConverterABase* const converter :
       std::initializer_list<const VelClConverterABase*>{&fromUnknown, &toUnicode, &fromUnicode}) {
    EXPECT_EQ(converter->getLastError().getErrorId(), static_cast<unsigned long>(CPCONVERTER_UNSUPPORTED));
    EXPECT_FALSE(converter->isSupported());
    EXPECT_TRUE(converter->requiresExternalICONVRoutine());
    EXPECT_FALSE(converter->requiresExternalICUData());
    EXPECT_EQ(convert(*converter, "ab", 8), unsupported);
  }
  EXPECT_FALSE(toUnknown.isSupported());
  EXPECT_TRUE(toUnknown.requiresExternalICONVRoutine());
  EXPECT_EQ(convert(toUnknown, "ab", 8).errorId, static_cast<std::uint32_t>(CPCONVERTER_UNSUPPORTED));
  // Equal CCSIDs need no way.
  EXPECT_EQ(convert(CodePageConverter(ccsid(4), ccsid(4)), "ab", 8), (Outcome{"ab", 2}));
}

TEST(Converter, GoesThroughUcs2) {
  const struct {
    const char* what;
    VelClCCSID from;
    VelClCCSID to;
    std::string source;
    std::size_t targetSize;
    Outcome expected;
  } rows[] = {
      {"equal", ccsid(850), ccsid(850), "a\x81\xFF", 8, {"a\x81\xFF", 3}},
      {"equal, too small: no error", ccsid(850), ccsid(850), "abc", 2, {"ab", 2}},
      {"equal but for the mark", ccsid(65501), ccsid(13488), "abc", 3, {"abc", 3}},
      {"not equal: odd is incomplete", ccsid(1200), ccsid(13488), "abc", 3, incomplete("ab", 2)},
      {"EBCDIC to ASCII", ccsid(500), ccsid(850), "\xC1\x15\x25", 3, {"A\n\n", 3}},
      {"EBCDIC to UTF-8", ccsid(37), ccsid(1208), "\xC1\x4A", 3, {"A\xC2\xA2", 2}},
      {"UTF-8 to EBCDIC", ccsid(1208), ccsid(500), "A\xC3\xA4", 2, {"\xC1\x43", 3}},
      {"host order, second stage only", ccsid(1200), ccsid(1208), "A\0\x41"s, 4, incomplete("A", 2)},
      {"first stage only", ccsid(1208), ccsid(17584), "A\xC3", 4, incomplete(unitBytes(u"A"), 1)},
      {"swapped", ccsid(65500), ccsid(1208), "\0A"s, 4, {"A", 2}},
      {"to swapped", ccsid(1208), ccsid(65500), "A", 2, {"\0A"s, 1}},
      // The first stage's error is forgotten.
      {"incomplete source", ccsid(930), ccsid(1208), "\xC1\x0E\x42\xC1", 8, {"A\xEF\xBC\xA1", 4}},
      {"incomplete character", ccsid(1208), ccsid(500), "A\xC3", 8, {"\xC1", 1}},
      {"second stage too small", ccsid(37), ccsid(1208), "\xC1\xC2", 1, tooBig("A", 2)},
      {"second stage too small for a table", ccsid(37), ccsid(850), "\xC1\xC2", 1, tooBig("", 2)},
      {"empty", ccsid(37), ccsid(850), "", 0, {"", 0}},
      // By number, not by property.
      {"unknown by name", VelClCCSID("CP1200"), ccsid(1208), "A\0"s, 4, {"A", 2}},
  };
  for (const auto& row : rows) {
    const CodePageConverter converter(row.from, row.to);
    EXPECT_TRUE(converter.isSupported()) << row.what;
    EXPECT_EQ(convert(converter, row.source, row.targetSize), row.expected) << row.what;
  }
  const VelClCodePage2UTF8Converter converter(ccsid(5026));
  EXPECT_EQ(converter.getTargetCCSID().getAsInt(), 1208);
  EXPECT_EQ(converter.getSourceCCSID().getAsInt(), 5026);
  EXPECT_EQ(convert(converter, "\xC1", 4), (Outcome{"A", 1}));
}

TEST(Converter, TakesAPlainSource) {
  const VelClCodePage2UTF8Converter converter(ccsid(37));
  const VelClConverterABase& base = converter;
  char target[8] = "xxxx";
  EXPECT_EQ(converter.convertBytes(target, sizeof target, "\xC1\xC2", 2), 2U);
  EXPECT_EQ(base.convertBytes(target + 2, 6, "\xC3", 1), 1U);
  EXPECT_EQ(std::string(target), "ABCx");
}

/// How many of all CCSIDs take a way, which does not depend on the system.
TEST(Converter, HasItsOwnWaysFirst) {
  using Route = VelClConverterABase::VelEnRoute;
  int toUnicode[5] = {};
  int fromUnicode[5] = {};
  for (int number = 0; number < 0x10000; ++number) {
    if (!ccsid(number).isValid()) continue;
    ++toUnicode[static_cast<int>(VelClCodePage2UnicodeConverter(ccsid(number)).getRoute())];
    ++fromUnicode[static_cast<int>(VelClUnicode2CodePageConverter(ccsid(number)).getRoute())];
  }
  EXPECT_EQ(toUnicode[static_cast<int>(Route::TABLE)], 49 + 11 + 3);
  EXPECT_EQ(toUnicode[static_cast<int>(Route::ALGORITHM)], 7);
  EXPECT_EQ(toUnicode[static_cast<int>(Route::SYSTEM)], 0);
  EXPECT_EQ(fromUnicode[static_cast<int>(Route::TABLE)], 2);
  EXPECT_EQ(fromUnicode[static_cast<int>(Route::ALGORITHM)], 8);
  EXPECT_EQ(VelClUnicode2CodePageConverter(ccsid(4)).getRoute(), Route::NONE);
}

// 5026, 5035 and 938 go to other tables, 932 and 942 have none of their own.
TEST(Converter, FollowsAliases) {
  const struct {
    int alias;
    int meant;
  } rows[] = {{5026, 930}, {5035, 939}, {938, 948}};
  const std::string source = "\xC1\x0E\x42\xC1\x0F\xA4\x40";
  for (const auto& row : rows) {
    const VelClCodePage2UnicodeConverter alias{ccsid(row.alias)};
    const VelClCodePage2UnicodeConverter meant{ccsid(row.meant)};
    EXPECT_FALSE(alias.requiresExternalICUData());
    EXPECT_EQ(convert(alias, source, 32), convert(meant, source, 32)) << row.alias;
  }
}

class ReusableConverter : public VelClCodePage2UnicodeConverter {
 public:
  using VelClCodePage2UnicodeConverter::VelClCodePage2UnicodeConverter;
  void setSource(int number) { initNewCodePage2Unicode(ccsid(number)); }
  void close() { deinit(); }
};

TEST(Converter, CanTakeAnotherSource) {
  ReusableConverter converter{ccsid(37)};
  converter.setSource(1208);
  EXPECT_EQ(converter.getSourceCCSID().getAsInt(), 1208);
  EXPECT_EQ(convert(converter, "\xC3\xA4", 4), (Outcome{unitBytes(u"\xE4"), 2}));
  converter.setSource(943);
  converter.setSource(37);
  EXPECT_EQ(convert(converter, "\xC1", 4), (Outcome{unitBytes(u"A"), 1}));
  converter.close();
  EXPECT_FALSE(converter.isSupported());
}

bool fails = false;
long blocks = 0;
std::size_t lastSize = 0;
void* watchedMalloc(std::size_t size) {
  if (fails) return nullptr;
  ++blocks;
  lastSize = size;
  return std::malloc(size);
}
void watchedFree(void* block) {
  --blocks;
  std::free(block);
}

TEST(Converter, KeepsItsBufferAndGivesItBack) {
  VelClMemoryManager::setNewMemoryManager(&watchedMalloc, nullptr, &watchedFree);
  {
    const CodePageConverter converter(ccsid(37), ccsid(850));
    EXPECT_EQ(convert(converter, "\xC1", 1).bytes, "A");
    EXPECT_EQ(lastSize, 2U + 32769);
    // 16385 bytes need 32770 and one more: they still fit, one byte more does not.
    lastSize = 0;
    EXPECT_EQ(convert(converter, std::string(16385, '\xC1'), 20000).bytes.size(), 16385U);
    EXPECT_EQ(lastSize, 0U);
    fails = true;
    EXPECT_THROW(convert(converter, std::string(16386, '\xC1'), 20000), VelClExceptionFatal);
    fails = false;
    EXPECT_EQ(blocks, 0);
    EXPECT_EQ(convert(converter, std::string(16386, '\xC1'), 20000).bytes.size(), 16386U);
    EXPECT_EQ(lastSize, 32772U + 32769);
    EXPECT_EQ(blocks, 1);
  }
  EXPECT_EQ(blocks, 0);
  {
    // One byte more than the need makes the buffer grow, whatever the size.
    const CodePageConverter converter(ccsid(65500), ccsid(1208));
    convert(converter, "a", 1);
    EXPECT_EQ(lastSize, 1U + 32769);
    convert(converter, std::string(32770, 'a'), 0);
    EXPECT_EQ(lastSize, 32770U + 32769);
  }
  VelClMemoryManager::setNewMemoryManager(&std::malloc, &std::realloc, &std::free);
}

// The system's own code page is the last way, after tables and ICU.
TEST(Converter, KnowsTheSystemsCodePage) {
  const VelClCCSID system{VelClCCSID::getSystemCCSID()};
  EXPECT_EQ(VelClCCSID::getConsoleCCSID(), VelClCCSID::getConsoleCCSID());
  ASSERT_NE(system.getAsInt(), 0);
  const VelClUnicode2CodePageConverter converter{system};
  ASSERT_TRUE(converter.isSupported());
  const Outcome outcome = convert(converter, unitBytes(u"abc"), 8);
  EXPECT_EQ(outcome.bytes, "abc");
  EXPECT_EQ(outcome.errorId, static_cast<std::uint32_t>(VEL_NO_ERROR));
}

/// Runs one conversion function as a converter would.
Outcome call(VelClConverterABase::VelConversionFunction function, const VelClConverterABase& converter,
             std::string_view source, std::size_t targetSize) {
  std::string target(targetSize, '\0');
  const char* position = source.data();
  VelClConverterABase::_VelStConverter record{converter, target.data(), targetSize, &position, source.size()};
  const std::size_t written = function(record);
  return {target.substr(0, written), static_cast<std::size_t>(position - source.data()),
          converter.getLastError().errorId, converter.getLastError().errorClass};
}

TEST(SystemConversion, LeavesTheSourceWhereItIs) {
  const VelClUnicode2CodePageConverter system{VelClCCSID(VelClCCSID::getSystemCCSID())};
  const auto function = &velConvertByWindowsCallUCS2ToWinCP;
  EXPECT_EQ(call(function, system, unitBytes(u"abc"), 3), (Outcome{"abc", 0}));
  // A target without room is no question for the size; an empty source fails like a target that is too small.
  EXPECT_EQ(call(function, system, unitBytes(u"abc"), 2), tooBig("", 0));
  EXPECT_EQ(call(function, system, unitBytes(u"abc"), 0), tooBig("", 0));
  EXPECT_EQ(call(function, system, "", 8), tooBig("", 0));
  const VelClUnicode2CodePageConverter unknown{ccsid(4)};
  EXPECT_EQ(call(function, unknown, unitBytes(u"abc"), 8), tooBig("", 0));
  EXPECT_EQ(call(&velConvertByTablesEUCtoUCS2, unknown, "abc", 8).consumed, 0U);
}

}  // namespace
