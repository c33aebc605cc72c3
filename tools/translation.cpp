// Looks up the translations of texts. translations.py generates the tables. A tool has some dozens of texts,
// and looks up each once, so the search is linear.
#include "tools/translation.h"

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/utf.h"
#include "platform/languages.h"

namespace vel::tools {
namespace {

constexpr unsigned int kPrimaryLanguageMask = 0x3FF;
constexpr unsigned int kPrimaryGerman = 7;

// Constant-initialised, because the report of a lack of memory is translated, too.
constinit const Translation* programTable = nullptr;
constinit bool isGerman = false;
/// The German texts in the order of the table, if the code page of the process is not UTF-8. Never freed,
/// since texts are looked up until the process ends.
constinit const std::vector<std::string>* convertedTexts = nullptr;

/// The German texts are well-formed, and in the basic plane.
std::u16string utf16Of(std::string_view text) {
  std::u16string units;
  while (!text.empty()) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t size = utf8SequenceAt(bytes, text.size()).size;
    units += static_cast<char16_t>(decodeUtf8(bytes, size));
    text.remove_prefix(size);
  }
  return units;
}

std::string ansiOf(std::string_view text) {
  const std::u16string units = utf16Of(text);
  std::string bytes(4 * units.size(), '\0');
  bytes.resize(platform::utf16ToAnsi(units.data(), units.size(), bytes.data(), bytes.size()));
  return bytes;
}

}  // namespace

void useTranslations(const Translation* table) noexcept {
  programTable = table;
}

void chooseLanguage(unsigned int catalogLanguage) {
  const bool wantsGerman =
      programTable != nullptr && (catalogLanguage & kPrimaryLanguageMask) == kPrimaryGerman;
  if (wantsGerman && convertedTexts == nullptr && !platform::ansiIsUtf8()) {
    auto texts = std::make_unique<std::vector<std::string>>();
    for (const Translation* row = programTable; row->english != nullptr; ++row)
      texts->push_back(ansiOf(row->german));
    convertedTexts = texts.release();
  }
  isGerman = wantsGerman;
}

const char* translated(const char* english) noexcept {
  if (!isGerman) return english;
  for (const Translation* row = programTable; row->english != nullptr; ++row) {
    if (std::strcmp(row->english, english) != 0) continue;
    return convertedTexts == nullptr
               ? row->german
               : (*convertedTexts)[static_cast<std::size_t>(row - programTable)].c_str();
  }
  return english;
}

}  // namespace vel::tools
