// ICU: its statuses; the search for its library and the calls of its functions, with fakes of both; and,
// where it is installed, conversions.
#include "codepage/icu/icu_calls.h"
#include "codepage/test/mapping_file.h"
#include "codepage/test/outcome.h"
#include "platform/dynamic_libraries.h"
#include "platform/test/test.h"
#include "platform/test/thrown.h"

namespace {

using vel::codepage::IcuBuffers;
using vel::codepage::IcuConverter;
using vel::codepage::IcuFunctions;
using vel::codepage::IcuStatus;
using vel::platform::Procedure;
using vel::test::thrown;

// ---- Statuses --------------------------------------------------------------------------------

TEST(IcuInterface, MapsStatuses) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/icu_statuses.tsv")) {
    SCOPED_TRACE(row[0]);
    const std::int32_t status = std::stoi(row[0]);
    _VelStError error;
    EXPECT_EQ(VelClIcuInterface::isIcuError(status), status > 0);
    EXPECT_EQ(thrown([&] { VelClIcuInterface::mapIcuError(error, status); }), row[2]);
    EXPECT_EQ(thrown([&] { VelClIcuInterface::getVelErrorIdForIcuError(status); }), row[2]);
    EXPECT_EQ(thrown([&] { VelClIcuInterface::handleIcuErrorCode(status); }), row[3]);
    if (row[2] != "-") continue;
    EXPECT_EQ(std::to_string(error.errorId) + ' ' + std::to_string(static_cast<int>(error.errorClass)),
              row[1]);
    EXPECT_EQ(VelClIcuInterface::getVelErrorIdForIcuError(status), error.errorId);
    EXPECT_EQ(VelClIcuInterface::getVelErrorClassForIcuError(status), error.errorClass);
    _VelStUserError whole;
    VelClIcuInterface::mapIcuError(whole, status);
    EXPECT_EQ(VelClIcuInterface::getVelErrorSeverityForIcuError(status), whole.severity);
    EXPECT_EQ(VelClIcuInterface::getVelErrorActionForIcuError(status), whole.action);
  }
}

// ---- Finding ICU -----------------------------------------------------------------------------

/// The fake library: its name, the suffix of its functions and how many are missing; and the names sought.
std::string installedName;
std::vector<std::string> soughtNames;
std::string installedSuffix;
int missingFunctions = 0;
int loads = 0;
int frees = 0;

void* loadInstalled(const char* name) {
  soughtNames.emplace_back(name);
  if (name != installedName) return nullptr;
  ++loads;
  return &installedName;
}
Procedure findInstalled(void*, const char* name) {
  const char* const plain[] = {"ucnv_open",      "ucnv_openCCSID",   "ucnv_close",         "ucnv_setFallback",
                               "ucnv_toUnicode", "ucnv_fromUnicode", "ucnv_getMaxCharSize"};
  for (int i = 0; i < 7 - missingFunctions; ++i)
    if (name == plain[i] + installedSuffix) return [] { return 0; };
  return nullptr;
}
void freeInstalled(void*) {
  ++frees;
}

bool bindInstalled(int ownVersion, IcuFunctions& functions) {
  return vel::codepage::bindIcu({&loadInstalled, &findInstalled, &freeInstalled}, ownVersion, functions);
}

TEST(IcuLibrary, IsFoundInAnyVersion) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/icu_libraries.tsv")) {
    installedName = row[0];
    installedSuffix = row[1];
    missingFunctions = std::stoi(row[2]);
    const bool isFound = row[3] == "yes";
    loads = frees = 0;
    IcuFunctions functions{};
    SCOPED_TRACE(row[0] + row[1]);
    EXPECT_EQ(bindInstalled(0, functions), isFound);
    EXPECT_EQ(loads - frees, isFound ? 1 : 0);
    EXPECT_EQ(functions.getMaxCharSize != nullptr, isFound);
  }
}

TEST(IcuLibrary, IsSoughtFirstInTheVersionOfTheBuild) {
  installedName = "";
  IcuFunctions functions{};
  const auto sought = [&](int ownVersion) {
    soughtNames.clear();
    EXPECT_FALSE(bindInstalled(ownVersion, functions));
    return soughtNames;
  };
  const std::vector<std::string> any = sought(0), own = sought(63);
  EXPECT_THAT(std::vector(own.begin(), own.begin() + 3),
              testing::ElementsAre("icuuc63.dll", "libicuuc.so.63", any[0]));
  // All other names follow, each of them once.
  EXPECT_THAT(own, testing::UnorderedElementsAreArray(any));
  EXPECT_NE(VEL_ICU_VERSION, 0);
}

// ---- Calls -----------------------------------------------------------------------------------

/// The arguments that the fake functions have received, and the statuses that they return.
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
const IcuFunctions kFakes{&fakeOpen,      &fakeOpenCcsid, nullptr, &fakeSetFallback,
                          &fakeToUnicode, nullptr,        nullptr};

template <typename Word>
std::vector<Word> words(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<Word>(stream), {}};
}

TEST(IcuCalls, OpenByNameOrNumber) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/icu_openings.tsv")) {
    SCOPED_TRACE(row[0] + ": " + row[1]);
    script = {{}, words<IcuStatus>(row[1])};
    IcuStatus status = 99;
    const auto* const converter =
        vel::codepage::openIcuConverter(kFakes, static_cast<unsigned int>(std::stoi(row[0])), status);
    EXPECT_EQ(std::to_string(status), row[3]);
    EXPECT_EQ(converter != nullptr, status <= 0);
    EXPECT_EQ(script.asked, words<std::string>(row[2]));
  }
}

TEST(IcuCalls, ResetTheConverterAfterAnError) {
  char target[8];
  const std::vector<std::string> dropped = {"3 to 3", "0 to 64", "0 to 64"};
  for (const IcuStatus status : {0, 15, -127, 12}) {
    script = {{}, {status, status == 0 ? 0 : 15}};
    IcuBuffers text{target, 7, "abc", 3, 0};
    EXPECT_EQ(vel::codepage::convertToUnicode(kFakes, &script, text), 2U);
    EXPECT_EQ(text.status, status);
    EXPECT_EQ(script.asked, status == 0 ? std::vector<std::string>{"3 to 3"} : dropped);
  }
  // A converter that always overflows must not cause an endless loop.
  script = {{}, std::vector<IcuStatus>(1000, 15)};
  IcuBuffers text{target, 8, "", 0, 0};
  vel::codepage::convertToUnicode(kFakes, &script, text);
  EXPECT_LT(script.asked.size(), 100U);
}

// ---- ICU itself ------------------------------------------------------------------------------

class InstalledIcu : public testing::Test {
 protected:
  void SetUp() override {
    _VelStError error;
    const void* const converter = velGetICUConverter(1051, error);
    const bool isThere = error.errorId != ICU_UNSUPPORTED_ERROR;
    // VEL_TEST_ICU, if set, says whether ICU must be installed.
    const char* const known = std::getenv("VEL_TEST_ICU");
    ASSERT_EQ(known == nullptr ? isThere : std::string(known) == "there", isThere);
    if (!isThere) {
      EXPECT_FALSE(VelClCodePage2UnicodeConverter(ccsid(943)).isSupported());
      GTEST_SKIP() << "there is no ICU";
    }
    ASSERT_NE(converter, nullptr);
    EXPECT_EQ(error.errorId, static_cast<std::uint32_t>(VEL_NO_ERROR));
    ASSERT_TRUE(VelClCodePage2UnicodeConverter(ccsid(943)).isSupported())
        << "tests that need ICU would be skipped";
    velDeleteICUConverter(converter);
    velDeleteICUConverter(nullptr);
  }
};

TEST_F(InstalledIcu, ReportsAMissingFileForAnUnknownCodePage) {
  _VelStError error;
  EXPECT_EQ(velGetICUConverter(4, error), nullptr);
  EXPECT_EQ(error.errorId, static_cast<std::uint32_t>(ICU_FILE_ACCESS_ERROR));
  EXPECT_EQ(error.errorClass, VelEnErrorClass::IO_PROBLEM);
}

TEST_F(InstalledIcu, AgreesWithThePublishedMappings) {
  int pages = 0;
  for (const MappingFile& mapping : MappingFile::all("sbcs")) {
    const VelClUnicode2CodePageConverter converter{ccsid(mapping.ccsid)};
    if (!converter.requiresExternalICUData()) continue;
    ++pages;
    // ICU may replace unmappable units by another substitute.
    const auto substitution =
        static_cast<unsigned int>(std::stoi(mapping.head.at("substitution"), nullptr, 16));
    std::u16string units;
    std::string bytes;
    for (unsigned int unit = 0; unit < 0x10000; ++unit) {
      if (mapping.units[unit] == substitution) continue;
      units += static_cast<char16_t>(unit);
      bytes += static_cast<char>(mapping.units[unit]);
    }
    EXPECT_EQ(convert(converter, unitBytes(units), bytes.size()), (Outcome{bytes, units.size() * 2}))
        << mapping.ccsid;
  }
  EXPECT_GE(pages, 20);
}

}  // namespace
