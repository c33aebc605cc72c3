// Tags, codes and names, against the tables' source files.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "vel_include/vel_helpers.h"
#include "vel_include/vel_messages.h"
#include "vel_include/vel_process.h"

namespace {

/// Row and column of a table's source, without its headings.
std::vector<std::vector<std::string>> sourceRows(const char* file) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream source(std::string(VEL_LANGUAGE_DATA_DIR "/") + file);
  std::string line;
  std::getline(source, line);
  while (std::getline(source, line)) {
    std::istringstream fields(line);
    rows.emplace_back();
    for (std::string field; std::getline(fields, field, '\t');) rows.back().push_back(field);
  }
  return rows;
}

std::string printed(const VelClLanguage& language) {
  std::ostringstream stream;
  stream << language;
  return stream.str();
}

TEST(Language, FindsEveryLanguage) {
  const auto rows = sourceRows("languages.tsv");
  ASSERT_EQ(rows.size(), 143U);
  EXPECT_EQ(VelClLanguage::getNumberOfLanguagesSupported(), 143U);
  for (unsigned int i = 0; i < rows.size(); ++i) {
    const VelClLanguage language(rows[i][0].c_str());
    EXPECT_EQ(language.asNumber(), i << 16) << rows[i][0];
    EXPECT_EQ(printed(language), rows[i][0]);
    EXPECT_EQ(VelClLanguage::getLanguageName(i), rows[i][1]);
  }
  EXPECT_STREQ(VelClLanguage::getLanguageName(54), "Hebrew");
  EXPECT_STREQ(VelClLanguage::getLanguageName(VelClLanguage::LANGUAGE_UNKNOWN), "??");
  EXPECT_STREQ(VelClLanguage::getLanguageCode(0xFFFFFFFF), "??");
}

TEST(Language, FindsEveryTerritory) {
  const auto rows = sourceRows("territories.tsv");
  ASSERT_EQ(rows.size(), 242U);
  EXPECT_EQ(VelClLanguage::getNumberOfTerritoriesSupported(), 242U);
  for (unsigned int i = 0; i < rows.size(); ++i) {
    const VelClLanguage language(("de_" + rows[i][0]).c_str());
    EXPECT_EQ(language.getTerritory(), i) << rows[i][0];
    EXPECT_EQ(language.getTerritoryCodeShort(), rows[i][0]);
    EXPECT_EQ(language.getTerritoryCodeLong(), rows[i][1]);
    EXPECT_EQ(VelClLanguage::getTerritoryIdNumber(i), std::stoi(rows[i][2]));
    EXPECT_EQ(VelClLanguage::getTerritoryName(i), rows[i][3]);
  }
  EXPECT_EQ(VelClLanguage::getTerritoryIdNumber(242), -1);
  EXPECT_STREQ(VelClLanguage::getTerritoryName(242), "??");
  EXPECT_STREQ(VelClLanguage::getTerritoryCodeLong(0xFFFFFFFF), "??");
}

TEST(Language, ReadsAndWritesTags) {
  struct Row {
    const char* tag;
    const char* shortCode;
    const char* longCode;
    const char* isoShort;
    const char* isoLong;
    const char* printed;
  };
  const Row rows[] = {
      {"en-US", "en-us", "en-usa", "en-us", "en-usa", "en-us"},
      {"EN_us", "en-us", "en-usa", "en-us", "en-usa", "en-us"},
      {"en", "en-**", "en-***", "en", "en", "en"},
      {"eng-US", "?\?-us", "?\?-usa", "?\?-us", "?\?-usa", "??"},
      {"en-USA", "en-??", "en-??", "en", "en", "??"},
      {"en-", "en-??", "en-??", "en", "en", "??"},
      {"X-ALL", "**-**", "**-***", "**", "**", "**"},
      {"x-Unspecified", "**-**", "**-***", "**", "**", "**"},
      {"x-unspecifie", "?\?-??", "?\?-??", "??", "??", "??"},
      {"**-de", "**-de", "**-deu", "**-de", "**-deu", "**-de"},
      // "_" separates only where there is no "-".
      {"en_US-x", "?\?-??", "?\?-??", "??", "??", "??"},
      {"en-US_x", "en-??", "en-??", "en", "en", "??"},
      {"en+US", "?\?-**", "?\?-***", "??", "??", "??"},
      {"e-US", "?\?-us", "?\?-usa", "?\?-us", "?\?-usa", "??"},
      {"e", "?\?-**", "?\?-***", "??", "??", "??"},
      {"-", "?\?-??", "?\?-??", "??", "??", "??"},
      {"", "?\?-**", "?\?-***", "??", "??", "??"},
      {nullptr, "?\?-**", "?\?-***", "??", "??", "??"},
      // Codes that are not as the standard has them.
      {"en-zm", "en-zm", "en-zwb", "en-zm", "en-zwb", "en-zm"},
      {"ar-AA", "ar-aa", "ar-ara", "ar-aa", "ar-ara", "ar-aa"},
  };
  for (const Row& row : rows) {
    const VelClLanguage language(row.tag);
    char text[9] = "xxxxxxxx";
    const char* const tag = row.tag == nullptr ? "null" : row.tag;
    language.extractShortCode(text);
    EXPECT_STREQ(text, row.shortCode) << tag;
    language.extractLongCode(text);
    EXPECT_STREQ(text, row.longCode) << tag;
    language.extractISOShortCode(text);
    EXPECT_STREQ(text, row.isoShort) << tag;
    language.extractISOLongCode(text);
    EXPECT_STREQ(text, row.isoLong) << tag;
    EXPECT_EQ(printed(language), row.printed) << tag;
    EXPECT_EQ(VelClLanguage(language.asNumber()).asNumber(), language.asNumber());
  }
  std::ostringstream column;
  column.width(6);
  column << VelClLanguage("en-US");
  EXPECT_EQ(column.str(), " en-us");
  EXPECT_EQ(VelClLanguage(0x12345678U).asNumber(), 0x12345678U);
  EXPECT_EQ(printed(VelClLanguage(0U)), "**");
}

// The test program runs for an English and for a German user; LC_ALL tells which.
TEST(LanguageOfUser, IsThatOfTheSettings) {
  const char* const user = std::getenv("LC_ALL");
  const bool isGerman = user != nullptr && std::string(user).starts_with("de");
  EXPECT_EQ(printed(VelClLanguage::getUserLanguage()), isGerman ? "de-de" : "en-us");
}

TEST(LanguageOfUser, IsReadFromLocaleNames) {
  if (velGetOperatingSystemId() != 0) GTEST_SKIP() << "Windows keeps settings of its own";
  struct Row {
    const char* locale;
    const char* language;
    unsigned int territory;
  };
  const unsigned int austria = VelClLanguage("de-at").getTerritory();
  const Row rows[] = {
      {"de_AT.UTF-8@euro", "de", austria},
      {"de_AT@euro", "de", austria},
      {"de-at", "de", austria},
      {"de.UTF-8", "de", VelClLanguage::TERRITORY_UNSPECIFIED},
      {"de_X", "de", VelClLanguage::TERRITORY_UNKNOWN},
      {"fil_AT", "??", austria},
      {"C", "en", VelClLanguage("en-us").getTerritory()},
      {"C.UTF-8", "en", VelClLanguage("en-us").getTerritory()},
      {"POSIX", "en", VelClLanguage("en-us").getTerritory()},
      {"de_much_too_long_for_a_tag", "en", VelClLanguage("en-us").getTerritory()},
  };
  const VelClEnvironmentVariableQueryOnly user("LC_ALL");
  const std::string before = user.hasValue() ? user.getValue() : "";
  for (const Row& row : rows) {
    VelClEnvironmentVariable("LC_ALL", row.locale);
    const VelClLanguage language = VelClLanguage::getUserLanguage();
    EXPECT_STREQ(language.getLanguageCode(), row.language) << row.locale;
    EXPECT_EQ(language.getTerritory(), row.territory) << row.locale;
  }
  VelClEnvironmentVariable("LC_ALL", before.c_str());
}

}  // namespace
