// The converter classes: sources given as plain pointers, a changed source CCSID, the intermediate buffer,
// and the conversion by the system. Which route each CCSID has is tested by tools/velconv/velconv_test.cpp.
#include "codepage/test/outcome.h"
#include "platform/test/test.h"
#include "platform/test/watched_memory.h"

namespace {

using namespace std::string_literals;

using CodePageConverter = VelClCodePage2CodePageConverter;

TEST(Converter, ConvertsASourceGivenAsAPlainPointer) {
  const VelClCodePage2UTF8Converter converter(ccsid(37));
  EXPECT_EQ(converter.getSourceCCSID().getAsInt(), 37);
  EXPECT_EQ(converter.getTargetCCSID().getAsInt(), 1208);
  const VelClConverterABase& base = converter;
  char target[8] = "xxxx";
  EXPECT_EQ(converter.convertBytes(target, sizeof target, "\xC1\xC2", 2), 2U);
  EXPECT_EQ(base.convertBytes(target + 2, 6, "\xC3", 1), 1U);
  EXPECT_EQ(std::string(target), "ABCx");
}

class ReusableConverter : public VelClCodePage2UnicodeConverter {
 public:
  using VelClCodePage2UnicodeConverter::VelClCodePage2UnicodeConverter;
  void setSource(int number) { initNewCodePage2Unicode(ccsid(number)); }
  void close() { deinit(); }
};

TEST(Converter, CanBeGivenAnotherSourceCcsid) {
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

TEST(Converter, ReusesItsBufferAndFreesIt) {
  vel::test::WatchedMemory memory;
  {
    const CodePageConverter converter(ccsid(37), ccsid(850));
    EXPECT_EQ(convert(converter, "\xC1", 1).bytes, "A");
    EXPECT_EQ(memory.lastSize, 2U + 32769);
    // 16385 bytes require 32771, the size of the buffer; one byte more makes it grow.
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
    // A need of exactly the buffer's size makes the buffer grow: it must be at least one byte larger.
    const CodePageConverter converter(ccsid(65500), ccsid(1208));
    convert(converter, "a", 1);
    EXPECT_EQ(memory.lastSize, 1U + 32769);
    convert(converter, std::string(32770, 'a'), 0);
    EXPECT_EQ(memory.lastSize, 32770U + 32769);
  }
}

// Intentional: the console's code page is queried once per process. The system's follows the locale.
TEST(Converter, CachesTheCodePageOfTheConsole) {
  const VelClCCSID console{VelClCCSID::getConsoleCCSID()};
  for (const char* const locale : {"C.ISO-8859-1", "C.ISO-8859-15", "C.KOI8-R"}) {
    const vel::test::Variable other("LC_ALL", locale);
    EXPECT_EQ(VelClCCSID{VelClCCSID::getConsoleCCSID()}.getAsInt(), console.getAsInt()) << locale;
  }
}

TEST(Converter, SupportsTheCodePageOfTheSystem) {
  const VelClCCSID system{VelClCCSID::getSystemCCSID()};
  ASSERT_NE(system.getAsInt(), 0);
  const VelClUnicode2CodePageConverter converter{system};
  ASSERT_TRUE(converter.isSupported());
  EXPECT_EQ(convert(converter, unitBytes(u"abc"), 8).bytes, "abc");
  EXPECT_EQ(converter.getLastError().getErrorId(), static_cast<unsigned long>(VEL_NO_ERROR));
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

TEST(SystemConversion, DoesNotAdvanceTheSource) {
  const VelClUnicode2CodePageConverter system{VelClCCSID(VelClCCSID::getSystemCCSID())};
  const auto function = &velConvertByWindowsCallUCS2ToWinCP;
  EXPECT_EQ(call(function, system, unitBytes(u"abc"), 3), (Outcome{"abc", 0}));
  // An empty target is too small; the needed size is not returned. An empty source fails in the same way.
  EXPECT_EQ(call(function, system, unitBytes(u"abc"), 2), tooBig("", 0));
  EXPECT_EQ(call(function, system, unitBytes(u"abc"), 0), tooBig("", 0));
  EXPECT_EQ(call(function, system, "", 8), tooBig("", 0));
  const VelClUnicode2CodePageConverter unknown{ccsid(4)};
  EXPECT_EQ(call(function, unknown, unitBytes(u"abc"), 8), tooBig("", 0));
  // No EUC tables exist: the function consumes nothing.
  EXPECT_EQ(call(&velConvertByTablesEUCtoUCS2, unknown, "abc", 8).consumed, 0U);
}

}  // namespace
