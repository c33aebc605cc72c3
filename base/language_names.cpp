// The table of locale names and the searches in it.
#include "base/language_names.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/ascii.h"

namespace vel {
namespace {

struct LocaleRow {
  std::string_view name;  // lower case; territories only where they differ from the bare language
  std::uint16_t language;
};

// clang-format off
constexpr LocaleRow kLocaleRows[] = {
    {"af", 0x436},
    {"am", 0x45E},
    {"ar", 0x401},
    {"ar_ae", 0x3801},
    {"ar_bh", 0x3C01},
    {"ar_dz", 0x1401},
    {"ar_eg", 0xC01},
    {"ar_iq", 0x801},
    {"ar_jo", 0x2C01},
    {"ar_kw", 0x3401},
    {"ar_lb", 0x3001},
    {"ar_ly", 0x1001},
    {"ar_ma", 0x1801},
    {"ar_om", 0x2001},
    {"ar_qa", 0x4001},
    {"ar_sy", 0x2801},
    {"ar_tn", 0x1C01},
    {"ar_ye", 0x2401},
    {"as", 0x44D},
    {"az", 0x42C},
    {"ba", 0x46D},
    {"be", 0x423},
    {"bg", 0x402},
    {"bn", 0x445},
    {"bn_bd", 0x845},
    {"bo", 0x451},
    {"br", 0x47E},
    {"bs", 0x141A},
    {"ca", 0x403},
    {"co", 0x483},
    {"cs", 0x405},
    {"cy", 0x452},
    {"da", 0x406},
    {"de", 0x407},
    {"de_at", 0xC07},
    {"de_ch", 0x807},
    {"de_li", 0x1407},
    {"de_lu", 0x1007},
    {"dsb", 0x82E},
    {"dv", 0x465},
    {"el", 0x408},
    {"en", 0x409},
    {"en_au", 0xC09},
    {"en_bz", 0x2809},
    {"en_ca", 0x1009},
    {"en_gb", 0x809},
    {"en_ie", 0x1809},
    {"en_in", 0x4009},
    {"en_jm", 0x2009},
    {"en_my", 0x4409},
    {"en_nz", 0x1409},
    {"en_ph", 0x3409},
    {"en_sg", 0x4809},
    {"en_tt", 0x2C09},
    {"en_za", 0x1C09},
    {"en_zw", 0x3009},
    {"es", 0xC0A},
    {"es_ar", 0x2C0A},
    {"es_bo", 0x400A},
    {"es_cl", 0x340A},
    {"es_co", 0x240A},
    {"es_cr", 0x140A},
    {"es_do", 0x1C0A},
    {"es_ec", 0x300A},
    {"es_gt", 0x100A},
    {"es_hn", 0x480A},
    {"es_mx", 0x80A},
    {"es_ni", 0x4C0A},
    {"es_pa", 0x180A},
    {"es_pe", 0x280A},
    {"es_pr", 0x500A},
    {"es_py", 0x3C0A},
    {"es_sv", 0x440A},
    {"es_us", 0x540A},
    {"es_uy", 0x380A},
    {"es_ve", 0x200A},
    {"et", 0x425},
    {"eu", 0x42D},
    {"fa", 0x429},
    {"fi", 0x40B},
    {"fil", 0x464},
    {"fo", 0x438},
    {"fr", 0x40C},
    {"fr_be", 0x80C},
    {"fr_ca", 0xC0C},
    {"fr_ch", 0x100C},
    {"fr_lu", 0x140C},
    {"fr_mc", 0x180C},
    {"fy", 0x462},
    {"ga", 0x83C},
    {"gd", 0x491},
    {"gl", 0x456},
    {"gu", 0x447},
    {"ha", 0x468},
    {"he", 0x40D},
    {"hi", 0x439},
    {"hr", 0x41A},
    {"hr_ba", 0x101A},
    {"hsb", 0x42E},
    {"hu", 0x40E},
    {"hy", 0x42B},
    {"id", 0x421},
    {"ig", 0x470},
    {"in", 0x421},
    {"is", 0x40F},
    {"it", 0x410},
    {"it_ch", 0x810},
    {"iw", 0x40D},
    {"ja", 0x411},
    {"ka", 0x437},
    {"kk", 0x43F},
    {"kl", 0x46F},
    {"km", 0x453},
    {"kn", 0x44B},
    {"ko", 0x412},
    {"kok", 0x457},
    {"ky", 0x440},
    {"lb", 0x46E},
    {"lo", 0x454},
    {"lt", 0x427},
    {"lv", 0x426},
    {"mi", 0x481},
    {"mk", 0x42F},
    {"ml", 0x44C},
    {"mn", 0x450},
    {"mr", 0x44E},
    {"ms", 0x43E},
    {"ms_bn", 0x83E},
    {"mt", 0x43A},
    {"nb", 0x414},
    {"ne", 0x461},
    {"nl", 0x413},
    {"nl_be", 0x813},
    {"nn", 0x814},
    {"no", 0x414},
    {"oc", 0x482},
    {"or", 0x448},
    {"pa", 0x446},
    {"pl", 0x415},
    {"ps", 0x463},
    {"pt", 0x416},
    {"pt_pt", 0x816},
    {"rm", 0x417},
    {"ro", 0x418},
    {"ru", 0x419},
    {"rw", 0x487},
    {"sa", 0x44F},
    {"se", 0x43B},
    {"si", 0x45B},
    {"sk", 0x41B},
    {"sl", 0x424},
    {"sq", 0x41C},
    {"sr", 0x281A},
    {"sr_ba", 0x1C1A},
    {"sr_me", 0x301A},
    {"sv", 0x41D},
    {"sv_fi", 0x81D},
    {"sw", 0x441},
    {"ta", 0x449},
    {"te", 0x44A},
    {"tg", 0x428},
    {"th", 0x41E},
    {"tk", 0x442},
    {"tl", 0x464},
    {"tn", 0x432},
    {"tr", 0x41F},
    {"tt", 0x444},
    {"ug", 0x480},
    {"uk", 0x422},
    {"ur", 0x420},
    {"ur_in", 0x820},
    {"uz", 0x443},
    {"vi", 0x42A},
    {"wo", 0x488},
    {"xh", 0x434},
    {"yo", 0x46A},
    {"zh", 0x804},
    {"zh_hk", 0xC04},
    {"zh_mo", 0x1404},
    {"zh_sg", 0x1004},
    {"zh_tw", 0x404},
    {"zu", 0x435},
};
// clang-format on
static_assert(std::ranges::is_sorted(kLocaleRows, {}, &LocaleRow::name));

constexpr char kTerritoryMark = '_';

/// Folds a character to its form in the table: lower case, "_" for "-". The table is searched with folded
/// characters, so that the name need not be copied.
constexpr char folded(char c) noexcept {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c == '-' ? kTerritoryMark : c;
}

/// Whether a row's name sorts before a name as the caller spelled it.
bool sortsBefore(std::string_view row, std::string_view name) noexcept {
  return std::ranges::lexicographical_compare(row, name, {}, {}, folded);
}

bool matches(std::string_view row, std::string_view name) noexcept {
  return std::ranges::equal(row, name, {}, {}, folded);
}

std::uint32_t languageOf(std::string_view name) noexcept {
  const auto row = std::ranges::lower_bound(kLocaleRows, name, sortsBefore, &LocaleRow::name);
  return row != std::end(kLocaleRows) && matches(row->name, name) ? row->language : 0;
}

constexpr std::uint32_t kPrimaryLanguage = 0x3FF;
constexpr std::uint32_t kMainTerritory = 0x400;

/// Names that are not the first one of their language in the table.
constexpr LocaleRow kFullNames[] = {{"zh_CN", 0x804}, {"zh_CN", 0x4}, {"pt_BR", 0x416}, {"pt_BR", 0x16}};

bool isBare(const LocaleRow& row) noexcept {
  return row.name.find(kTerritoryMark) == std::string_view::npos;
}

/// A number without territory has the name of the main territory's language, else that of the first
/// territory.
std::string_view nameOf(std::uint32_t language) noexcept {
  const auto nameOfFirst = [](const auto& rows, auto isFound) {
    const auto* const row = std::ranges::find_if(rows, isFound);
    return row == std::end(rows) ? std::string_view() : row->name;
  };
  const auto has = [](std::uint32_t number) {
    return [number](const LocaleRow& row) { return row.language == number; };
  };
  std::string_view name = nameOfFirst(kFullNames, has(language));
  if (name.empty()) name = nameOfFirst(kLocaleRows, has(language));
  if (!name.empty() || language == 0 || language > kPrimaryLanguage) return name;
  name = nameOfFirst(kLocaleRows, has(language | kMainTerritory));
  if (!name.empty()) return name;
  return nameOfFirst(kLocaleRows, [language](const LocaleRow& row) {
    return isBare(row) && (row.language & kPrimaryLanguage) == language;
  });
}

}  // namespace

bool localeNameOfLanguageId(std::uint32_t language, char (&out)[kMaxLocaleName + 1]) noexcept {
  const std::string_view name = nameOf(language);
  if (name.empty()) return false;
  bool isTerritory = false;
  char* end = out;
  for (const char c : name) {
    *end++ = isTerritory ? toAsciiUpper(c) : c;
    isTerritory = isTerritory || c == kTerritoryMark;
  }
  *end = '\0';
  return true;
}

std::uint32_t languageIdOfLocaleName(const char* localeName) noexcept {
  if (localeName == nullptr) return 0;
  std::string_view name(localeName);
  name = name.substr(0, name.find_first_of(".@"));
  // First with the territory, then the bare language: the table lists only territories that differ from it.
  const std::uint32_t exact = languageOf(name);
  return exact != 0 ? exact : languageOf(name.substr(0, name.find_first_of("_-")));
}

}  // namespace vel
