// Tags, codes and names. The tables are made from languages.tsv and territories.tsv: tests that read these
// prove that every row is found, and the facts below that the old ones are kept.
#include <gtest/gtest.h>

#include <sstream>

#include "platform/test/table.h"
#include "platform/test/variable.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_messages.h"
#include "vel_include/vel_process.h"

namespace {

std::string printed(const VelClLanguage& language) {
  std::ostringstream stream;
  stream << language;
  return stream.str();
}

TEST(Language, FindsEveryLanguage) {
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

TEST(Language, FindsEveryTerritory) {
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

// Intentional: not as the standards have them today.
TEST(Language, KeepsOldCodesAndNames) {
  EXPECT_STREQ(VelClLanguage::getLanguageName(VelClLanguage("iw").getLanguage()), "Hebrew");
  EXPECT_STREQ(VelClLanguage::getLanguageName(VelClLanguage("nb").getLanguage()), "Norwegian (Bokmal)");
  struct Row {
    const char *code, *longCode;
    int number;
    const char* name;
  };
  const Row rows[] = {{"aa", "ara", 0, "Arabic"},         {"fx", "fxx", 249, "France Metropolitan"},
                      {"gs", "sgs", 23, "South Georgia"}, {"sp", "ser", 0, "Serbia"},
                      {"tp", "tmp", 626, "East Timor"},   {"yu", "yug", 891, "Yugoslavia"},
                      {"zm", "zwb", 894, "Zambia"},       {"zr", "zar", 180, "Zaire"}};
  for (const auto& [code, longCode, number, name] : rows) {
    const unsigned int index = VelClLanguage((std::string("de_") + code).c_str()).getTerritory();
    EXPECT_STREQ(VelClLanguage::getTerritoryCodeLong(index), longCode);
    EXPECT_EQ(VelClLanguage::getTerritoryIdNumber(index), number) << code;
    EXPECT_STREQ(VelClLanguage::getTerritoryName(index), name);
  }
}

TEST(Language, ReadsAndWritesTags) {
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

// The test program runs for an English and for a German user; LC_ALL tells which.
TEST(LanguageOfUser, IsThatOfTheSettings) {
  const std::string user = VelClEnvironmentVariableQueryOnly("LC_ALL").getValue();
  EXPECT_EQ(printed(VelClLanguage::getUserLanguage()), user.starts_with("de") ? "de-de" : "en-us");
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
