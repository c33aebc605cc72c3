// ICU: the table of its statuses; finding it, against loaders and functions made for the test; and, where it
// is installed, conversions with it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codepage/icu_calls.h"
#include "codepage/test/conversion_outcome.h"

namespace {

using namespace std::string_literals;

using vel::codepage::IcuConverter;
using vel::codepage::IcuFunctions;
using vel::codepage::IcuStatus;
using vel::codepage::IcuText;
using vel::platform::Procedure;

// ---- Statuses --------------------------------------------------------------------------------

/// The exception that `function` throws; identifier 0 when none.
template <typename Function>
VelClException caught(Function function) {
  try {
    function();
  } catch (const VelClException& exception) {
    return exception;
  }
  return VelClException(0, VelEnErrorClass::UNKNOWN, VelEnErrorSeverity::NONE, VelEnErrorAction::NO_ACTION,
                        "");
}

TEST(IcuInterface, MapsStatuses) {
  using Class = VelEnErrorClass;
  using Severity = VelEnErrorSeverity;
  using Action = VelEnErrorAction;
  const struct {
    std::int32_t status;
    std::uint32_t id;
    Class errorClass;
    Severity severity;
    Action action;
  } rows[] = {
      {0, VEL_NO_ERROR, Class::UNKNOWN, Severity::NONE, Action::NO_ACTION},
      {1, ICU_ILLEGAL_ARGUMENT_ERROR, Class::USER_ERROR, Severity::INTERNAL, Action::INFORM},
      {5, ICU_INTERNAL_PROGRAM_ERROR, Class::UNKNOWN, Severity::INTERNAL, Action::ABORT},
      {7, ICU_MEMORY_ALLOCATION_ERROR, Class::OUT_OF_MEMORY, Severity::FATAL, Action::INFORM},
      {11, CPCONVERTER_INCOMPLETE, Class::INVALID_DATA, Severity::NORMAL, Action::INFORM},
      {15, CPCONVERTER_TOO_BIG, Class::USER_DATA_ERROR, Severity::NORMAL, Action::INFORM},
      {20, ICU_NO_SPACE_AVAILABLE, Class::RESOURCE_EXHAUSTED, Severity::NORMAL, Action::INFORM},
      {66568, ICU_ERROR_LIMIT, Class::UNKNOWN, Severity::NONE, Action::NO_ACTION},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.status);
    _VelStError error;
    VelClIcuInterface::mapIcuError(error, row.status);
    EXPECT_EQ(error.errorId, row.id);
    EXPECT_EQ(error.errorClass, row.errorClass);
    EXPECT_EQ(VelClIcuInterface::isIcuError(row.status), row.status > 0);
    const VelClException exception = caught([&] { VelClIcuInterface::handleIcuErrorCode(row.status); });
    EXPECT_EQ(exception.getId(), row.id);
    EXPECT_EQ(exception.getSeverity(), row.severity);
    EXPECT_EQ(exception.getAction(), row.action);
    if (row.status == 0) continue;
    EXPECT_STREQ(exception.getOrigin(), "VelClIcuInterface::handleIcuErrorCode, line 325");
  }
}

TEST(IcuInterface, ThrowsForOtherStatuses) {
  for (const std::int32_t status : {-1, -122, 21, 66818, 0x7FFFFFFF}) {
    _VelStError error;
    EXPECT_EQ(VelClIcuInterface::isIcuError(status), status > 0);
    const VelClException exception = caught([&] { VelClIcuInterface::mapIcuError(error, status); });
    EXPECT_EQ(exception.getId(), static_cast<unsigned long>(ICU_UNEXPECTED_ICU_ERROR));
    EXPECT_EQ(exception.getSeverity(), VelEnErrorSeverity::INTERNAL);
    EXPECT_EQ(exception.getAction(), VelEnErrorAction::ABORT);
    EXPECT_STREQ(exception.getCause(), "Unexpected ICU error");
    EXPECT_STREQ(exception.getOrigin(), "VelClIcuInterface::getVelEntryForIcuError, line 252");
    EXPECT_EQ(exception.getLine(), 252U);
    EXPECT_THROW(VelClIcuInterface::getVelErrorIdForIcuError(status), VelClException);
    const VelClException handled = caught([status] { VelClIcuInterface::handleIcuErrorCode(status); });
    EXPECT_EQ(handled.getId(), status > 0 ? static_cast<unsigned long>(ICU_UNEXPECTED_ICU_ERROR) : 0UL);
  }
}

// ---- Finding ICU -----------------------------------------------------------------------------

/// The one library that there is, its functions' suffix, and how many of them it has.
std::string installedName;
std::string installedSuffix;
int missingFunctions = 0;
int loads = 0;
int frees = 0;

void* loadInstalled(const char* name) {
  if (name != installedName) return nullptr;
  ++loads;
  return &installedName;
}
Procedure findInstalled(void*, const char* name) {
  const char* const plain[] = {"ucnv_open",        "ucnv_openCCSID", "ucnv_close",
                               "ucnv_setFallback", "ucnv_toUnicode", "ucnv_fromUnicode"};
  for (int i = 0; i < 6 - missingFunctions; ++i)
    if (name == plain[i] + installedSuffix) return [] { return 0; };
  return nullptr;
}
void freeInstalled(void*) {
  ++frees;
}

TEST(IcuLibrary, IsFoundInAnyVersion) {
  const struct {
    const char* name;
    const char* suffix;
    int missing;
    bool isFound;
  } rows[] = {
      {"libicuuc.so.72", "_72", 0, true},   {"libicuuc.so.72", "", 0, true},
      {"libicuuc.so.72", "_3_2", 0, true},  {"libicuuc.so.32", "_3_2", 0, true},
      {"libicuuc.so.48", "_4_8", 0, true},  {"libicuuc.so.49", "_49", 0, true},
      {"icuuc78.dll", "_78", 0, true},      {"icu.dll", "", 0, true},
      {"icuuc.dll", "_68", 0, true},        {"libicuuc.so", "_4_4", 0, true},
      {"libicuuc.so.72", "_71", 0, false},  {"libicuuc.so.72", "_72", 1, false},
      {"libicuuc.so.31", "_3_2", 0, false}, {"", "", 0, false},
  };
  for (const auto& row : rows) {
    installedName = row.name;
    installedSuffix = row.suffix;
    missingFunctions = row.missing;
    loads = frees = 0;
    IcuFunctions functions{};
    EXPECT_EQ(vel::codepage::bindIcu({&loadInstalled, &findInstalled, &freeInstalled}, functions),
              row.isFound)
        << row.name << row.suffix;
    EXPECT_EQ(loads - frees, row.isFound ? 1 : 0) << row.name << row.suffix;
    EXPECT_EQ(functions.fromUnicode != nullptr, row.isFound);
  }
}

// ---- Calls -----------------------------------------------------------------------------------

/// What functions made for the test are asked, and answer.
struct Script {
  std::vector<std::string> asked;
  std::vector<IcuStatus> statuses;  ///< one for each call, then 0

  IcuStatus next() {
    const IcuStatus status = statuses.empty() ? 0 : statuses.front();
    if (!statuses.empty()) statuses.erase(statuses.begin());
    return status;
  }
};
Script script;

IcuConverter* fakeOpen(const char* name, IcuStatus* status) {
  script.asked.emplace_back(name);
  *status = script.next();
  return *status > 0 ? nullptr : &script;
}
IcuConverter* fakeOpenCcsid(std::int32_t number, int platform, IcuStatus* status) {
  return fakeOpen((std::to_string(number) + "/" + std::to_string(platform)).c_str(), status);
}
void fakeSetFallback(IcuConverter*, vel::codepage::IcuBool usesFallback) {
  script.asked.emplace_back(usesFallback == 1 ? "fallback" : "no fallback");
}
void fakeToUnicode(IcuConverter*, char16_t** target, const char16_t* targetLimit, const char** source,
                   const char* sourceLimit, std::int32_t*, vel::codepage::IcuBool flush, IcuStatus* status) {
  EXPECT_EQ(flush, 1);
  script.asked.push_back(std::to_string(sourceLimit - *source) + " to " +
                         std::to_string(targetLimit - *target));
  *source = sourceLimit;
  if (*target != targetLimit) *(*target)++ = u'x';
  *status = script.next();
}
const IcuFunctions kFakes{&fakeOpen, &fakeOpenCcsid, nullptr, &fakeSetFallback, &fakeToUnicode, nullptr};

TEST(IcuCalls, OpenByNameOrNumber) {
  using Texts = std::vector<std::string>;
  const struct {
    unsigned int ccsid;
    std::vector<IcuStatus> statuses;
    Texts asked;
    IcuStatus status;
  } rows[] = {
      {37, {0}, {"37/0", "fallback"}, 0},
      {37, {-122}, {"37/0", "fallback"}, -122},
      {37, {4}, {"37/0"}, 4},
      {942, {0}, {"zan-942_VSUB_VPUA", "fallback"}, 0},
      {932, {4, 0}, {"zan-942_VSUB_VPUA", "sjis78", "fallback"}, 0},
      {943, {4, 0}, {"zan-943_VSUB_VPUA", "cp943c", "fallback"}, 0},
      {943, {4, 7}, {"zan-943_VSUB_VPUA", "cp943c"}, 7},
      {1392, {0}, {"gb18030", "fallback"}, 0},
      {65502, {-122}, {"LMBCS", "fallback"}, -122},
  };
  for (const auto& row : rows) {
    script = {{}, row.statuses};
    IcuStatus status = 99;
    EXPECT_EQ(vel::codepage::openIcuConverter(kFakes, row.ccsid, status) != nullptr, row.status <= 0)
        << row.ccsid;
    EXPECT_EQ(status, row.status);
    EXPECT_EQ(script.asked, row.asked);
  }
}

TEST(IcuCalls, DropWhatAnErrorLeavesBehind) {
  char target[8];
  const std::vector<std::string> dropped = {"3 to 3", "0 to 64", "0 to 64"};
  for (const IcuStatus status : {0, 15, -127, 12}) {
    script = {{}, {status, status == 0 ? 0 : 15}};
    IcuText text{target, 7, "abc", 3, 0};
    EXPECT_EQ(vel::codepage::convertToUnicode(kFakes, &script, text), 2U);
    EXPECT_EQ(text.status, status);
    EXPECT_EQ(script.asked, status == 0 ? std::vector<std::string>{"3 to 3"} : dropped);
  }
  // A converter that overflows for ever does not keep the caller.
  script = {{}, std::vector<IcuStatus>(1000, 15)};
  IcuText text{target, 8, "", 0, 0};
  vel::codepage::convertToUnicode(kFakes, &script, text);
  EXPECT_LT(script.asked.size(), 100U);
}

// ---- ICU itself ------------------------------------------------------------------------------

class InstalledIcu : public testing::Test {
 protected:
  void SetUp() override {
    _VelStError error;
    const void* const converter = velGetICUConverter(1051, error);
    if (error.errorId == ICU_UNSUPPORTED_ERROR) {
      EXPECT_FALSE(VelClCodePage2UnicodeConverter(ccsid(943)).isSupported());
      GTEST_SKIP() << "there is no ICU";
    }
    ASSERT_NE(converter, nullptr);
    velDeleteICUConverter(converter);
    velDeleteICUConverter(nullptr);
  }
};

TEST_F(InstalledIcu, OpensItsConverters) {
  for (const unsigned int number : {932U, 942U, 943U, 1392U, 65502U, 33722U, 1051U}) {
    _VelStError error;
    const void* const converter = velGetICUConverter(number, error);
    EXPECT_NE(converter, nullptr) << number;
    EXPECT_EQ(error.errorId, static_cast<std::uint32_t>(VEL_NO_ERROR));
    velDeleteICUConverter(converter);
  }
  _VelStError error;
  EXPECT_EQ(velGetICUConverter(4, error), nullptr);
  EXPECT_EQ(error.errorId, static_cast<std::uint32_t>(ICU_FILE_ACCESS_ERROR));
  EXPECT_EQ(error.errorClass, VelEnErrorClass::IO_PROBLEM);
}

TEST_F(InstalledIcu, ConvertsWithIcusErrors) {
  const VelClCodePage2UnicodeConverter from943{ccsid(943)};
  const VelClUnicode2CodePageConverter to943{ccsid(943)};
  const VelClUnicode2CodePageConverter to18030{ccsid(18030)};
  constexpr auto kUserData = VelEnErrorClass::USER_DATA_ERROR;
  const auto id = [](auto number) { return static_cast<std::uint32_t>(number); };
  const struct {
    const char* what;
    const VelClConverterABase& converter;
    std::string source;
    std::size_t targetSize;
    Outcome expected;
  } rows[] = {
      // The other edition of 943 has a yen sign for 5C and U+301C for 8160.
      {"edition", from943, "\x5C\x81\x60", 4, {unitBytes(u"\\\xFF5E"), 3}},
      {"odd target", from943, "AB", 5, {unitBytes(u"AB"), 2}},
      {"too big", from943, "ABC", 3, {unitBytes(u"A"), 1, id(CPCONVERTER_TOO_BIG), kUserData}},
      // What did not fit above is not in the next output.
      {"after too big", from943, "X", 8, {unitBytes(u"X"), 1}},
      {"cut", from943, "A\x81", 8, {unitBytes(u"A\x1A"), 2}},
      {"after cut", from943, "\x60", 8, {unitBytes(u"`"), 1}},
      {"to bytes", to943, unitBytes(u"\x301C"), 2, {"\x81\x60", 2}},
      {"half its room", to943, unitBytes(u"\x301C"), 1, {"\x81", 2, id(CPCONVERTER_TOO_BIG), kUserData}},
      {"after half", to943, unitBytes(u"A"), 8, {"A", 2}},
      {"odd source", to943, "A\0B"s, 8, {"", 0, id(ICU_ILLEGAL_ARGUMENT_ERROR), VelEnErrorClass::USER_ERROR}},
      {"four bytes", to18030, unitBytes(u"\x00A5"), 4, {"\x81\x30\x84\x36", 2}},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(row.converter.requiresExternalICUData());
    EXPECT_EQ(convert(row.converter, row.source, row.targetSize), row.expected) << row.what;
  }
}

TEST_F(InstalledIcu, KnowsAliases) {
  const struct {
    int alias;
    int meant;
  } toUnicode[] = {{18030, 1392}, {5488, 1392}, {936, 1386}, {954, 33722}};
  // Only 954 itself has the three bytes.
  std::string text = "\x8F\xA2\xAF";
  for (int lead = 0xA1; lead < 0xFF; ++lead)
    for (int trail = 0xA1; trail < 0xFF; ++trail) text += {static_cast<char>(lead), static_cast<char>(trail)};
  for (const auto& row : toUnicode) {
    const VelClCodePage2UnicodeConverter alias{ccsid(row.alias)};
    const VelClCodePage2UnicodeConverter meant{ccsid(row.meant)};
    EXPECT_TRUE(alias.requiresExternalICUData());
    EXPECT_EQ(convert(alias, text, text.size() * 2), convert(meant, text, text.size() * 2)) << row.alias;
  }
  // On the way back it is 954 itself.
  EXPECT_EQ(convert(VelClUnicode2CodePageConverter{ccsid(954)}, unitBytes(u"\xA1"), 3).bytes, "\x8F\xA2\xC2");
}

TEST_F(InstalledIcu, IsTheSecondStageToo) {
  const VelClCodePage2CodePageConverter converter(ccsid(500), ccsid(37));
  EXPECT_TRUE(converter.requiresExternalICUData());
  EXPECT_EQ(convert(converter, "\xC1\x4A\x25", 3), (Outcome{"\xC1\xBA\x25", 3}));
}

}  // namespace
