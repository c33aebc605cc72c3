// Languages with territories: parses tags such as "en-US" and looks codes up in two tables, which
// generate_languages.py makes from languages.tsv and territories.tsv. The numbers of rows are part of the
// interface; they are unrelated to the system's LANGIDs.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <ostream>
#include <string_view>

#include "base/ascii.h"
#include "base/short_text.h"
#include "platform/languages.h"
#include "vel_include/vel_messages.h"

namespace {

struct LanguageRow {
  std::string_view code;
  const char* name;
};

struct TerritoryRow {
  std::string_view code;
  const char* longCode;
  std::int32_t number;
  const char* name;
};

#include "languages.inc"

static_assert(std::size(kLanguages) == VelClLanguage::LANGUAGE_UNKNOWN);
static_assert(std::size(kTerritories) == VelClLanguage::TERRITORY_UNKNOWN);

constexpr const char* kUnknown = "??";
constexpr std::size_t kCodeLength = 2;
constexpr char kOtherCombiningChar = '_';

/// Returns the index of the row with this code, in either case, or the number of rows if the table does not
/// contain it; the latter is the value of LANGUAGE_UNKNOWN or TERRITORY_UNKNOWN. The tables are sorted by
/// code.
template <typename Row, std::size_t count>
std::uint32_t find(const Row (&table)[count], std::string_view code) {
  if (code.size() != kCodeLength) return count;
  const char folded[] = {vel::toAsciiLower(code[0]), vel::toAsciiLower(code[1])};
  const std::string_view wanted(folded, kCodeLength);
  const Row* row = std::ranges::lower_bound(table, wanted, {}, &Row::code);
  if (row == std::end(table) || row->code != wanted) row = std::end(table);
  return static_cast<std::uint32_t>(row - table);
}

/// Returns the row with this index, or null if the index is too large.
template <typename Row, std::size_t count>
const Row* rowAt(const Row (&table)[count], std::uint32_t index) {
  return index < count ? &table[index] : nullptr;
}

/// Copies a string with its terminator and returns the address of the terminator, where the next one goes.
char* append(char* out, const char* text) {
  const std::size_t length = std::strlen(text);
  std::memcpy(out, text, length + 1);
  return out + length;
}

bool isTagForAll(const char* tag) {
  return vel::equalsIgnoringAsciiCase(tag, "x-all") || vel::equalsIgnoringAsciiCase(tag, "x-unspecified");
}

}  // namespace

const char* const VelClLanguage::cv_cpszCombiningCharString = "-";

VelClLanguage::VelClLanguage(unsigned int number)
    : language_(static_cast<VelEnLanguage>(number >> 16)),
      territory_(static_cast<VelEnTerritory>(number & 0xFFFF)) {}

VelClLanguage::VelClLanguage(const char* tag) : language_(LANGUAGE_UNKNOWN), territory_(TERRITORY_UNKNOWN) {
  parse(vel::textOrEmpty(tag));
}

void VelClLanguage::parse(const char* tag) {
  if (isTagForAll(tag)) {
    language_ = LANGUAGE_UNSPECIFIED;
    territory_ = TERRITORY_UNSPECIFIED;
    return;
  }
  const char* separator = std::strchr(tag, getCombiningChar());
  // Intentional: "_" separates only in tags without "-", so both codes of "en_US-x" are unknown.
  if (separator == nullptr) separator = std::strchr(tag, kOtherCombiningChar);
  territory_ = separator == nullptr ? TERRITORY_UNSPECIFIED
                                    : static_cast<VelEnTerritory>(find(kTerritories, separator + 1));
  const std::string_view text(tag);
  // Intentional: three-letter language codes are not looked up; callers get LANGUAGE_UNKNOWN for them.
  if (text.size() > kCodeLength && tag + kCodeLength != separator) return;
  language_ = static_cast<VelEnLanguage>(find(kLanguages, text.substr(0, kCodeLength)));
}

VelClLanguage VelClLanguage::getUserLanguage() {
  char tag[16];
  return VelClLanguage(vel::platform::userLanguageTag(tag, sizeof tag) ? tag : "en-US");
}

unsigned int VelClLanguage::asNumber() const {
  return static_cast<std::uint32_t>(language_) << 16 | static_cast<std::uint32_t>(territory_);
}

const char* VelClLanguage::getLanguageCode(unsigned int language) {
  const LanguageRow* const row = rowAt(kLanguages, language);
  return row != nullptr ? row->code.data() : kUnknown;
}

const char* VelClLanguage::getLanguageName(unsigned int language) {
  const LanguageRow* const row = rowAt(kLanguages, language);
  return row != nullptr ? row->name : kUnknown;
}

const char* VelClLanguage::getTerritoryCodeShort(unsigned int territory) {
  const TerritoryRow* const row = rowAt(kTerritories, territory);
  return row != nullptr ? row->code.data() : kUnknown;
}

const char* VelClLanguage::getTerritoryCodeLong(unsigned int territory) {
  const TerritoryRow* const row = rowAt(kTerritories, territory);
  return row != nullptr ? row->longCode : kUnknown;
}

const char* VelClLanguage::getTerritoryName(unsigned int territory) {
  const TerritoryRow* const row = rowAt(kTerritories, territory);
  return row != nullptr ? row->name : kUnknown;
}

int VelClLanguage::getTerritoryIdNumber(unsigned int territory) {
  const TerritoryRow* const row = rowAt(kTerritories, territory);
  return row != nullptr ? row->number : -1;
}

unsigned int VelClLanguage::getNumberOfLanguagesSupported() {
  return std::size(kLanguages);
}

unsigned int VelClLanguage::getNumberOfTerritoriesSupported() {
  return std::size(kTerritories);
}

void VelClLanguage::extractShortCode(char* out) const {
  append(append(append(out, getLanguageCode()), cv_cpszCombiningCharString), getTerritoryCodeShort());
}

void VelClLanguage::extractLongCode(char* out) const {
  append(append(append(out, getLanguageCode()), cv_cpszCombiningCharString), getTerritoryCodeLong());
}

void VelClLanguage::extractISOShortCode(char* out) const {
  namesTerritory() ? extractShortCode(out) : static_cast<void>(append(out, getLanguageCode()));
}

void VelClLanguage::extractISOLongCode(char* out) const {
  namesTerritory() ? extractLongCode(out) : static_cast<void>(append(out, getLanguageCode()));
}

// ISO tags leave out the territory if it is row 0 or not in the table.
bool VelClLanguage::namesTerritory() const {
  return territory_ != TERRITORY_UNSPECIFIED && territory_ < TERRITORY_UNKNOWN;
}

std::ostream& operator<<(std::ostream& stream, const VelClLanguage& language) {
  if (language.getLanguage() >= VelClLanguage::LANGUAGE_UNKNOWN ||
      language.getTerritory() >= VelClLanguage::TERRITORY_UNKNOWN)
    return stream << kUnknown;
  // Two codes of two letters each and the separator fit.
  char text[7];
  language.extractISOShortCode(text);
  return stream << text;
}
