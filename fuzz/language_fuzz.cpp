// Reads any text as a tag of language and territory, beside a search from row to row.
#include <cstring>
#include <string>

#include "fuzz/bytes.h"
#include "vel_include/vel_messages.h"

namespace {

using fuzz::require;

std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

/// The row with this code, or the number of rows.
unsigned int rowOf(const std::string& code, unsigned int count, const char* (*codeOf)(unsigned int)) {
  unsigned int row = 0;
  while (row < count && code != codeOf(row)) ++row;
  return row;
}

unsigned int numberOf(std::string_view tag) {
  const std::string text = lowered(tag);
  if (text == "x-all" || text == "x-unspecified") return 0;
  const std::size_t separator = text.find(text.find('-') == std::string::npos ? '_' : '-');
  const bool hasTerritory = separator != std::string::npos;
  const unsigned int territory =
      hasTerritory ? rowOf(text.substr(separator + 1), VelClLanguage::getNumberOfTerritoriesSupported(),
                           VelClLanguage::getTerritoryCodeShort)
                   : 0;
  const bool isTwoLetters = text.size() <= 2 || separator == 2;
  const unsigned int language = isTwoLetters
                                    ? rowOf(text.substr(0, 2), VelClLanguage::getNumberOfLanguagesSupported(),
                                            VelClLanguage::getLanguageCode)
                                    : VelClLanguage::LANGUAGE_UNKNOWN;
  return language << 16 | territory;
}

/// What it writes, into a block of exactly the room that is asked for.
fuzz::Text written(const VelClLanguage& language, void (VelClLanguage::*extract)(char*) const,
                   std::size_t room) {
  fuzz::Text code(std::string(room - 1, '#'));
  (language.*extract)(code.data());
  require(std::memchr(code.data(), '\0', room) != nullptr);
  return code;
}

}  // namespace

void fuzz::run(fuzz::Bytes bytes) {
  const fuzz::Text tag = bytes.text();
  const VelClLanguage language(tag);
  require(language.asNumber() == numberOf(tag.view()));
  const VelClLanguage copy(language.asNumber());
  require({copy.getLanguage() == language.getLanguage(), copy.getTerritory() == language.getTerritory()});
  const fuzz::Text shortCode = written(language, &VelClLanguage::extractShortCode, 7);
  const fuzz::Text isoCode = written(language, &VelClLanguage::extractISOShortCode, 7);
  written(language, &VelClLanguage::extractLongCode, 8);
  written(language, &VelClLanguage::extractISOLongCode, 8);
  // "??" is no code, so that an unknown language or territory is unknown again.
  require(VelClLanguage(shortCode).asNumber() == language.asNumber());
  require(VelClLanguage(isoCode).getLanguage() == language.getLanguage());
  // Any number may be asked about.
  const auto any = static_cast<unsigned int>(bytes.number()) << 8 | bytes.number();
  require((VelClLanguage::getTerritoryIdNumber(any) == -1) ==
          (any >= VelClLanguage::getNumberOfTerritoriesSupported()));
  require(VelClLanguage::getLanguageName(any) != nullptr);
}
