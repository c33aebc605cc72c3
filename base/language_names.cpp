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
  std::string_view mainTerritory{};  // of a row without territory: the one that the number is for
};

// clang-format off
constexpr LocaleRow kLocaleRows[] = {
    {"af", 0x436, "za"},
    {"am", 0x45E, "et"},
    {"ar", 0x401, "sa"},
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
    {"as", 0x44D, "in"},
    {"az", 0x42C, "az"},
    {"ba", 0x46D, "ru"},
    {"be", 0x423, "by"},
    {"bg", 0x402, "bg"},
    {"bn", 0x445, "in"},
    {"bn_bd", 0x845},
    {"bo", 0x451, "cn"},
    {"br", 0x47E, "fr"},
    {"bs", 0x141A, "ba"},
    {"ca", 0x403, "es"},
    {"co", 0x483, "fr"},
    {"cs", 0x405, "cz"},
    {"cy", 0x452, "gb"},
    {"da", 0x406, "dk"},
    {"de", 0x407, "de"},
    {"de_at", 0xC07},
    {"de_ch", 0x807},
    {"de_li", 0x1407},
    {"de_lu", 0x1007},
    {"dsb", 0x82E, "de"},
    {"dv", 0x465, "mv"},
    {"el", 0x408, "gr"},
    {"en", 0x409, "us"},
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
    {"es", 0xC0A, "es"},
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
    {"et", 0x425, "ee"},
    {"eu", 0x42D, "es"},
    {"fa", 0x429, "ir"},
    {"fi", 0x40B, "fi"},
    {"fil", 0x464, "ph"},
    {"fo", 0x438, "fo"},
    {"fr", 0x40C, "fr"},
    {"fr_be", 0x80C},
    {"fr_ca", 0xC0C},
    {"fr_ch", 0x100C},
    {"fr_lu", 0x140C},
    {"fr_mc", 0x180C},
    {"fy", 0x462, "nl"},
    {"ga", 0x83C, "ie"},
    {"gd", 0x491, "gb"},
    {"gl", 0x456, "es"},
    {"gu", 0x447, "in"},
    {"ha", 0x468, "ng"},
    {"he", 0x40D, "il"},
    {"hi", 0x439, "in"},
    {"hr", 0x41A, "hr"},
    {"hr_ba", 0x101A},
    {"hsb", 0x42E, "de"},
    {"hu", 0x40E, "hu"},
    {"hy", 0x42B, "am"},
    {"id", 0x421, "id"},
    {"ig", 0x470, "ng"},
    {"in", 0x421, "id"},
    {"is", 0x40F, "is"},
    {"it", 0x410, "it"},
    {"it_ch", 0x810},
    {"iw", 0x40D, "il"},
    {"ja", 0x411, "jp"},
    {"ka", 0x437, "ge"},
    {"kk", 0x43F, "kz"},
    {"kl", 0x46F, "gl"},
    {"km", 0x453, "kh"},
    {"kn", 0x44B, "in"},
    {"ko", 0x412, "kr"},
    {"kok", 0x457, "in"},
    {"ky", 0x440, "kg"},
    {"lb", 0x46E, "lu"},
    {"lo", 0x454, "la"},
    {"lt", 0x427, "lt"},
    {"lv", 0x426, "lv"},
    {"mi", 0x481, "nz"},
    {"mk", 0x42F, "mk"},
    {"ml", 0x44C, "in"},
    {"mn", 0x450, "mn"},
    {"mr", 0x44E, "in"},
    {"ms", 0x43E, "my"},
    {"ms_bn", 0x83E},
    {"mt", 0x43A, "mt"},
    {"nb", 0x414, "no"},
    {"ne", 0x461, "np"},
    {"nl", 0x413, "nl"},
    {"nl_be", 0x813},
    {"nn", 0x814, "no"},
    {"no", 0x414, "no"},
    {"oc", 0x482, "fr"},
    {"or", 0x448, "in"},
    {"pa", 0x446, "in"},
    {"pl", 0x415, "pl"},
    {"ps", 0x463, "af"},
    {"pt", 0x416, "br"},
    {"pt_pt", 0x816},
    {"rm", 0x417, "ch"},
    {"ro", 0x418, "ro"},
    {"ru", 0x419, "ru"},
    {"rw", 0x487, "rw"},
    {"sa", 0x44F, "in"},
    {"se", 0x43B, "no"},
    {"si", 0x45B, "lk"},
    {"sk", 0x41B, "sk"},
    {"sl", 0x424, "si"},
    {"sq", 0x41C, "al"},
    {"sr", 0x281A, "rs"},
    {"sr_ba", 0x1C1A},
    {"sr_me", 0x301A},
    {"sv", 0x41D, "se"},
    {"sv_fi", 0x81D},
    {"sw", 0x441, "ke"},
    {"ta", 0x449, "in"},
    {"te", 0x44A, "in"},
    {"tg", 0x428, "tj"},
    {"th", 0x41E, "th"},
    {"tk", 0x442, "tm"},
    {"tl", 0x464, "ph"},
    {"tn", 0x432, "za"},
    {"tr", 0x41F, "tr"},
    {"tt", 0x444, "ru"},
    {"ug", 0x480, "cn"},
    {"uk", 0x422, "ua"},
    {"ur", 0x420, "pk"},
    {"ur_in", 0x820},
    {"uz", 0x443, "uz"},
    {"vi", 0x42A, "vn"},
    {"wo", 0x488, "sn"},
    {"xh", 0x434, "za"},
    {"yo", 0x46A, "ng"},
    {"zh", 0x804, "cn"},
    {"zh_hk", 0xC04},
    {"zh_mo", 0x1404},
    {"zh_sg", 0x1004},
    {"zh_tw", 0x404},
    {"zu", 0x435, "za"},
};

/// Names that differ from those above in script or variant, or whose territory is a region. Only exact
/// searches use them.
constexpr LocaleRow kExactRows[] = {
    {"az_cyrl", 0x82C, "az"},
    {"az_latn", 0x42C, "az"},
    {"bs_cyrl", 0x201A, "ba"},
    {"bs_latn", 0x141A, "ba"},
    {"ca_es_valencia", 0x803},
    {"ca_valencia", 0x803, "es"},
    {"es_419", 0x580A},
    {"ha_latn", 0x468, "ng"},
    {"mn_cyrl", 0x450, "mn"},
    {"mn_mong", 0x850, "cn"},
    {"pa_arab", 0x846, "pk"},
    {"pa_guru", 0x446, "in"},
    {"ro_md", 0x818},
    {"sr_cyrl", 0x281A, "rs"},
    {"sr_cyrl_ba", 0x1C1A},
    {"sr_cyrl_me", 0x301A},
    {"sr_latn", 0x241A, "rs"},
    {"sr_latn_ba", 0x181A},
    {"sr_latn_me", 0x2C1A},
    {"tg_cyrl", 0x428, "tj"},
    {"uz_cyrl", 0x843, "uz"},
    {"uz_latn", 0x443, "uz"},
    {"zh_hans", 0x804, "cn"},
    {"zh_hans_sg", 0x1004},
    {"zh_hant", 0x404, "tw"},
    {"zh_hant_hk", 0xC04},
    {"zh_hant_mo", 0x1404},
};
// clang-format on
static_assert(std::ranges::is_sorted(kLocaleRows, {}, &LocaleRow::name));
static_assert(std::ranges::is_sorted(kExactRows, {}, &LocaleRow::name));

/// The subtags that modifiers of POSIX are, each with its "_".
struct ModifierRow {
  std::string_view modifier, subtag;
};
constexpr ModifierRow kModifiers[] = {{"", ""},
                                      {"@euro", ""},
                                      {"@latin", "_latn"},
                                      {"@cyrillic", "_cyrl"},
                                      {"@arabic", "_arab"},
                                      {"@valencia", "_valencia"}};
constexpr std::size_t kLongestExactName = 24;

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

template <std::size_t size>
const LocaleRow* findRow(const LocaleRow (&rows)[size], std::string_view name) noexcept {
  const auto* const row = std::ranges::lower_bound(rows, name, sortsBefore, &LocaleRow::name);
  return row != std::end(rows) && matches(row->name, name) ? row : nullptr;
}

std::uint32_t languageOf(std::string_view name) noexcept {
  const LocaleRow* const row = findRow(kLocaleRows, name);
  return row != nullptr ? row->language : 0;
}

const LocaleRow* findExactRow(std::string_view name) noexcept {
  const LocaleRow* const row = findRow(kLocaleRows, name);
  return row != nullptr ? row : findRow(kExactRows, name);
}

/// Returns 0 for a territory that is not the one of the number.
std::uint32_t exactLanguageOf(std::string_view name) noexcept {
  if (const LocaleRow* const row = findExactRow(name)) return row->language;
  const std::size_t separator = name.find_last_of("_-");
  if (separator == std::string_view::npos) return 0;
  const LocaleRow* const row = findExactRow(name.substr(0, separator));
  const bool isMain = row != nullptr && !row->mainTerritory.empty() &&
                      matches(row->mainTerritory, name.substr(separator + 1));
  return isMain ? row->language : 0;
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

std::uint32_t languageIdOfExactLocaleName(std::string_view localeName) noexcept {
  const std::string_view name = localeName.substr(0, localeName.find_first_of(".@"));
  const std::string_view modifier = localeName.substr(std::min(localeName.find('@'), localeName.size()));
  const auto* const row = std::ranges::find(kModifiers, modifier, &ModifierRow::modifier);
  if (row == std::end(kModifiers) || name.size() + row->subtag.size() > kLongestExactName) return 0;
  // The script is before the territory: "sr_RS@latin" is "sr_Latn_RS".
  const std::size_t language = std::min(name.find_first_of("_-"), name.size());
  char whole[kLongestExactName];
  char* end = std::ranges::copy(name.substr(0, language), whole).out;
  end = std::ranges::copy(row->subtag, end).out;
  end = std::ranges::copy(name.substr(language), end).out;
  return exactLanguageOf(std::string_view(whole, static_cast<std::size_t>(end - whole)));
}

}  // namespace vel
