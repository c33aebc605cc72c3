// The converter classes: their ways, their memory, and the system's own conversion.
#include <gtest/gtest.h>

#include <string>

#include "codepage/test/outcome.h"
#include "platform/test/variable.h"
#include "platform/test/watched_memory.h"

namespace {

using namespace std::string_literals;

using CodePageConverter = VelClCodePage2CodePageConverter;

TEST(Converter, TakesAPlainSource) {
  const VelClCodePage2UTF8Converter converter(ccsid(37));
  EXPECT_EQ(converter.getSourceCCSID().getAsInt(), 37);
  EXPECT_EQ(converter.getTargetCCSID().getAsInt(), 1208);
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
  const VelClUnicode2CodePageConverter none{ccsid(4)};
  EXPECT_EQ(none.getRoute(), Route::NONE);
  EXPECT_EQ(none.getLastError().getErrorId(), static_cast<unsigned long>(CPCONVERTER_UNSUPPORTED));
}

// 5026, 5035 and 938 go to other tables, 932 and 942 have none of their own.
TEST(Converter, FollowsAliases) {
  const std::string source = "\xC1\x0E\x42\xC1\x0F\xA4\x40";
  for (const auto& [number, meant] :
       std::initializer_list<std::pair<int, int>>{{5026, 930}, {5035, 939}, {938, 948}}) {
    const VelClCodePage2UnicodeConverter alias{ccsid(number)};
    EXPECT_FALSE(alias.requiresExternalICUData());
    EXPECT_EQ(convert(alias, source, 32), convert(VelClCodePage2UnicodeConverter{ccsid(meant)}, source, 32))
        << number;
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

TEST(Converter, KeepsItsBufferAndGivesItBack) {
  vel::test::WatchedMemory memory;
  {
    const CodePageConverter converter(ccsid(37), ccsid(850));
    EXPECT_EQ(convert(converter, "\xC1", 1).bytes, "A");
    EXPECT_EQ(memory.lastSize, 2U + 32769);
    // 16385 bytes need 32770 and one more: they still fit, one byte more does not.
    memory.lastSize = 0;
    EXPECT_EQ(convert(converter, std::string(16385, '\xC1'), 20000).bytes.size(), 16385U);
    EXPECT_EQ(memory.lastSize, 0U);
    memory.failsFrom = 1;
    EXPECT_THROW(convert(converter, std::string(16386, '\xC1'), 20000), VelClExceptionFatal);
    memory.failsFrom = 0;
    EXPECT_TRUE(memory.live.empty());
    EXPECT_EQ(convert(converter, std::string(16386, '\xC1'), 20000).bytes.size(), 16386U);
    EXPECT_EQ(memory.lastSize, 32772U + 32769);
    EXPECT_EQ(memory.live.size(), 1U);
  }
  EXPECT_TRUE(memory.live.empty());
  {
    // One byte more than the need makes the buffer grow, whatever the size.
    const CodePageConverter converter(ccsid(65500), ccsid(1208));
    convert(converter, "a", 1);
    EXPECT_EQ(memory.lastSize, 1U + 32769);
    convert(converter, std::string(32770, 'a'), 0);
    EXPECT_EQ(memory.lastSize, 32770U + 32769);
  }
}

// The console's page is asked for once; where locales can change within a process, the system's follows them.
TEST(Converter, KeepsTheConsolesCodePage) {
  const VelClCCSID console{VelClCCSID::getConsoleCCSID()};
  for (const char* const locale : {"C.ISO-8859-1", "C.ISO-8859-15", "C.KOI8-R"}) {
    const vel::test::Variable other("LC_ALL", locale);
    EXPECT_EQ(VelClCCSID{VelClCCSID::getConsoleCCSID()}.getAsInt(), console.getAsInt()) << locale;
  }
}

// The system's own code page is the last way, after tables and ICU.
TEST(Converter, KnowsTheSystemsCodePage) {
  const VelClCCSID system{VelClCCSID::getSystemCCSID()};
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
