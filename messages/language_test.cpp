// Tests language tags, codes and names. The tables are generated from languages.tsv and territories.tsv.
#include "platform/test/test.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_messages.h"
#include "vel_include/vel_process.h"

namespace {

std::string printed(const VelClLanguage& language) {
  std::ostringstream stream;
  stream << language;
  return stream.str();
}

TEST(Language, KnowsEveryLanguageOfTheTable) {
  const auto rows = vel::test::readTable(VEL_TEST_DATA "languages.tsv");
  // The interface has the number of rows.
  ASSERT_EQ(rows.size(), VelClLanguage::LANGUAGE_UNKNOWN);
  EXPECT_EQ(VelClLanguage::getNumberOfLanguagesSupported(), 143U);
  for (unsigned int i = 0; i < rows.size(); ++i) {
    const VelClLanguage language(rows[i][0].c_str());
    EXPECT_EQ(language.asNumber(), i << 16) << rows[i][0];
    EXPECT_EQ(printed(language), rows[i][0]);
    EXPECT_EQ(VelClLanguage::getLanguageName(i), rows[i][1]);
  }
  EXPECT_STREQ(VelClLanguage::getLanguageName(VelClLanguage::LANGUAGE_UNKNOWN), "??");
  EXPECT_STREQ(VelClLanguage::getLanguageCode(0xFFFFFFFF), "??");
}

TEST(Language, KnowsEveryTerritoryOfTheTable) {
  const auto rows = vel::test::readTable(VEL_TEST_DATA "territories.tsv");
  ASSERT_EQ(rows.size(), VelClLanguage::TERRITORY_UNKNOWN);
  EXPECT_EQ(VelClLanguage::getNumberOfTerritoriesSupported(), 242U);
  for (unsigned int i = 0; i < rows.size(); ++i) {
    const VelClLanguage language(("de_" + rows[i][0]).c_str());
    EXPECT_EQ(language.getTerritory(), i) << rows[i][0];
    EXPECT_EQ(language.getTerritoryCodeShort(), rows[i][0]);
    EXPECT_EQ(language.getTerritoryCodeLong(), rows[i][1]);
    EXPECT_EQ(VelClLanguage::getTerritoryIdNumber(i), std::stoi(rows[i][2]));
    EXPECT_EQ(VelClLanguage::getTerritoryName(i), rows[i][3]);
  }
  EXPECT_EQ(VelClLanguage::getTerritoryIdNumber(VelClLanguage::TERRITORY_UNKNOWN), -1);
  EXPECT_STREQ(VelClLanguage::getTerritoryName(VelClLanguage::TERRITORY_UNKNOWN), "??");
  EXPECT_STREQ(VelClLanguage::getTerritoryCodeLong(0xFFFFFFFF), "??");
}

// Intentional: callers rely on these codes and names, which differ from today's standards.
TEST(Language, KeepsOldCodesAndNames) {
  EXPECT_STREQ(VelClLanguage::getLanguageName(VelClLanguage("iw").getLanguage()), "Hebrew");
  EXPECT_STREQ(VelClLanguage::getLanguageName(VelClLanguage("nb").getLanguage()), "Norwegian (Bokmal)");
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/old_territories.tsv")) {
    const unsigned int index = VelClLanguage(("de_" + row[0]).c_str()).getTerritory();
    EXPECT_EQ(VelClLanguage::getTerritoryCodeLong(index), row.at(1));
    EXPECT_EQ(VelClLanguage::getTerritoryIdNumber(index), std::stoi(row.at(2))) << row[0];
    EXPECT_EQ(VelClLanguage::getTerritoryName(index), row.at(3));
  }
}

TEST(Language, IsParsedFromAndWrittenAsTags) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/language_tags.tsv")) {
    const VelClLanguage language(row[0].c_str());
    char shorter[9], longer[9], isoShort[9], isoLong[9];
    language.extractShortCode(shorter);
    language.extractLongCode(longer);
    language.extractISOShortCode(isoShort);
    language.extractISOLongCode(isoLong);
    const std::vector<std::string> written = {row[0], shorter, longer, isoShort, isoLong, printed(language)};
    EXPECT_EQ(written, row);
    EXPECT_EQ(VelClLanguage(language.asNumber()).asNumber(), language.asNumber());
  }
  std::ostringstream column;
  column.width(6);
  column << VelClLanguage("en-US");
  EXPECT_EQ(column.str(), " en-us");
  EXPECT_EQ(VelClLanguage(nullptr).asNumber(), VelClLanguage("").asNumber());
  EXPECT_EQ(VelClLanguage(0x12345678U).asNumber(), 0x12345678U);
  EXPECT_EQ(printed(VelClLanguage(0U)), "**");
}

TEST(LanguageFallback, LeadsToLanguagesThatTheUserReads) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/fallbacks.tsv")) {
    std::string chain;
    for (auto language = static_cast<unsigned int>(std::stoul(row[0], nullptr, 16)); language != 0;) {
      language = velLanguageGetFallback(language);
      chain += " " + std::to_string(language);
      ASSERT_LT(chain.size(), 100U);
    }
    EXPECT_EQ(chain, " " + row.at(1)) << row[0];
  }
  // Whatever the number, following it ends.
  for (unsigned int language = 0; language <= 0x10000; ++language)
    EXPECT_EQ(velLanguageGetFallback(velLanguageGetFallback(velLanguageGetFallback(language))), 0U);
  EXPECT_EQ(printed(velLanguageWithoutTerritory(VelClLanguage("de-AT"))), "de");
}

TEST(LanguageFallback, RemovesSubtagsOfLocaleNames) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/locale_fallbacks.tsv")) {
    const std::string expected = row.at(1) == "-" ? "" : row[1];
    char out[16];
    for (std::size_t capacity = 0; capacity <= sizeof out; ++capacity) {
      std::memset(out, '#', sizeof out);
      EXPECT_EQ(velLocaleGetFallback(row[0].c_str(), out, capacity), expected.size()) << row[0];
      EXPECT_EQ(std::string(out, capacity == 0 ? 0 : strlen(out)),
                capacity > expected.size() ? expected : "");
      if (capacity == sizeof out) continue;
      EXPECT_EQ(out[capacity], '#') << "a byte after the buffer was written";
    }
  }
  EXPECT_EQ(velLocaleGetFallback(nullptr, nullptr, 0), 0U);
}

// This program runs for users of several languages; LC_ALL tells which.
TEST(LanguageOfUser, IsThatOfTheSettings) {
  const std::string user = VelClEnvironmentVariableQueryOnly("LC_ALL").getValue();
  EXPECT_EQ(printed(VelClLanguage::getUserLanguage()), user.starts_with("de_AT") ? "de-at"
                                                       : user.starts_with("de")  ? "de-de"
                                                                                 : "en-us");
}

TEST(LanguageOfUser, IsReadFromLocaleNames) {
  if (velGetOperatingSystemId() != 0) GTEST_SKIP() << "Windows keeps settings of its own";
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/user_locales.tsv")) {
    const vel::test::Variable locale("LC_ALL", row[0].c_str());
    const VelClLanguage language = VelClLanguage::getUserLanguage();
    EXPECT_EQ(language.getLanguageCode(), row.at(1)) << row[0];
    EXPECT_EQ(language.getTerritoryCodeShort(), row.at(2)) << row[0];
  }
}

}  // namespace
