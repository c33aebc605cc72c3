// The language that readers of a regional language understand as well: German for Austrian German. By Windows
// language number, for catalogs, and by the name of a locale.
//
// A language number has the language in its low 10 bits and the territory above them. The first territory is
// the main one, except for the languages in the tables below.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "base/ascii.h"
#include "base/short_text.h"
#include "vel_include/vel_messages.h"

namespace {

constexpr std::uint32_t kLanguageMask = 0x3FF;
constexpr std::uint32_t kMainTerritory = 0x400;
constexpr std::uint32_t kHighestNumber = 0xFFFF;

struct FallbackRow {
  std::uint16_t language;
  std::uint16_t fallback;
};

/// Languages whose fallback is not their main territory.
constexpr FallbackRow kFallbacks[] = {
    {0x0004, 0x0804},  // zh, in simplified characters
    {0x040A, 0},       // es-ES in the traditional order, which the other one falls back to
    {0x043B, 0},       // se-NO
    {0x0804, 0},       // zh-CN
    {0x083B, 0x043B},  // se-SE
    {0x0C0A, 0x040A},  // es-ES
    {0x0C3B, 0x043B},  // se-FI
    {0x1004, 0x0804},  // zh-SG
    {0x101A, 0x041A},  // hr-BA
    {0x7804, 0x0804},  // zh
};
static_assert(std::ranges::is_sorted(kFallbacks, {}, &FallbackRow::language));

/// Numbers of languages whose territories stand for other languages or other scripts: readers of one cannot
/// be expected to read the other.
constexpr std::uint16_t kSeparateLanguages[] = {
    0x1A,  // Croatian, Serbian in two scripts, Bosnian
    0x2C,  // Azerbaijani in two scripts
    0x2E,  // Upper and Lower Sorbian
    0x3B,  // Sami languages
    0x3C,  // Irish
    0x43,  // Uzbek in two scripts
    0x46,  // Punjabi in two scripts
    0x50,  // Mongolian in two scripts
    0x51,  // Tibetan and Dzongkha
    0x59,  // Sindhi in two scripts
    0x5D,  // Inuktitut in two scripts
    0x5F,  // Tamazight in two scripts
};
static_assert(std::ranges::is_sorted(kSeparateLanguages));

std::uint32_t fallbackOf(std::uint32_t language) noexcept {
  const auto* const row = std::ranges::lower_bound(kFallbacks, language, {}, &FallbackRow::language);
  if (row != std::end(kFallbacks) && row->language == language) return row->fallback;
  const std::uint32_t bare = language & kLanguageMask;
  if (bare == 0 || language > kHighestNumber || std::ranges::binary_search(kSeparateLanguages, bare))
    return 0;
  // Other territories of Spanish fall back to the order of today.
  const std::uint32_t main = bare == 0x0A ? 0x0C0A : bare | kMainTerritory;
  return language != main ? main : 0;
}

/// Languages with a script that is not their usual one, or with a territory where they are written in such a
/// script, as CLDR lists them: parent locales that are the root, and likely subtags. In lower case.
constexpr std::string_view kUnusualScripts[] = {
    "az-arab",  "az-cyrl",  "az-iq",   "az-ir",   "az-ru",   "bal-latn", "bm-nkoo",  "bs-cyrl", "byn-latn",
    "dje-arab", "en-dsrt",  "en-shaw", "ff-adlm", "ff-arab", "ha-arab",  "ha-cm",    "ha-sd",   "iu-latn",
    "kk-af",    "kk-arab",  "kk-cn",   "kk-ir",   "kk-mn",   "ks-deva",  "ku-arab",  "ku-lb",   "ky-arab",
    "ky-cn",    "ky-latn",  "ky-tr",   "ml-arab", "mn-cn",   "mn-mong",  "mni-mtei", "ms-arab", "pa-arab",
    "pa-pk",    "sat-deva", "sd-deva", "sd-in",   "sd-khoj", "sd-sind",  "shi-latn", "so-arab", "sr-latn",
    "sr-me",    "sr-ro",    "sr-ru",   "sr-tr",   "sw-arab", "tg-arab",  "tg-pk",    "ug-cyrl", "ug-kz",
    "ug-mn",    "unr-deva", "uz-af",   "uz-arab", "uz-cn",   "uz-cyrl",  "vai-latn", "wo-arab", "yo-arab",
    "yue-cn",   "yue-hans", "zh-au",   "zh-bn",   "zh-gb",   "zh-gf",    "zh-hant",  "zh-hk",   "zh-id",
    "zh-mo",    "zh-pa",    "zh-pf",   "zh-ph",   "zh-sr",   "zh-th",    "zh-tw",    "zh-us",   "zh-vn"};
static_assert(std::ranges::is_sorted(kUnusualScripts));
constexpr std::size_t kLongestUnusual = 8;

/// The modifiers of POSIX that name a script. They are only used for scripts that are not the usual ones.
constexpr std::string_view kScriptModifiers[] = {"@arabic", "@cyrillic", "@devanagari", "@iqtelif", "@latin"};

bool hasUnusualScript(std::string_view name) noexcept {
  if (name.size() > kLongestUnusual) return false;
  char lower[kLongestUnusual];
  for (std::size_t i = 0; i < name.size(); ++i) lower[i] = name[i] == '_' ? '-' : vel::toAsciiLower(name[i]);
  return std::ranges::binary_search(kUnusualScripts, std::string_view(lower, name.size()));
}

/// Returns what is left of a locale's name, without code set and modifier, without its last subtag; "" if
/// nothing is.
std::string_view withoutLastSubtag(std::string_view name) noexcept {
  const std::size_t separator = name.find_last_of("-_");
  if (separator == std::string_view::npos) return {};
  name = name.substr(0, separator);
  // A subtag of one letter introduces the one that was removed.
  const std::size_t before = name.find_last_of("-_");
  return before != std::string_view::npos && before + 2 == name.size() ? name.substr(0, before) : name;
}

/// A name in two parts, since a code set can be between them in the name that it comes from.
struct LocaleName {
  std::string_view tag, modifier;

  std::size_t size() const { return tag.size() + modifier.size(); }
};

LocaleName fallbackOf(std::string_view name) noexcept {
  const std::string_view tag = name.substr(0, name.find_first_of(".@"));
  const std::string_view modifier = name.substr(std::min(name.find('@'), name.size()));
  const bool namesScript = std::ranges::find(kScriptModifiers, modifier) != std::end(kScriptModifiers);
  const bool isLast = !namesScript && hasUnusualScript(tag);
  const std::string_view rest = isLast ? std::string_view() : withoutLastSubtag(tag);
  return {rest, namesScript && !rest.empty() ? modifier : std::string_view()};
}

}  // namespace

unsigned int velLanguageGetFallback(unsigned int language) {
  return fallbackOf(language);
}

std::size_t velLocaleGetFallback(const char* name, char* out, std::size_t capacity) {
  const LocaleName fallback = fallbackOf(std::string_view(vel::textOrEmpty(name)));
  if (capacity == 0) return fallback.size();
  const bool fits = fallback.size() < capacity;
  if (fits)
    fallback.modifier.copy(out + fallback.tag.copy(out, fallback.tag.size()), fallback.modifier.size());
  out[fits ? fallback.size() : 0] = '\0';
  return fallback.size();
}
