#include "tools/velini/dialect.h"

#include <algorithm>

#include "base/ascii.h"

namespace vel::velini {

namespace {

constexpr Dialect kDialects[] = {
    {.name = "ini",
     .comments = ";",
     .sections = Names::AnyCase,
     .options = Names::AnyCase,
     .continuation = Continuation::Indentation,
     .values = Values::Library},
    {.name = "git",
     .comments = "#;",
     .sections = Names::Subsections,
     .options = Names::AnyCase,
     .continuation = Continuation::Backslash,
     .values = Values::Git,
     .bareValue = "true",
     .hasSubsections = true,
     .mayRepeat = true,
     .skipsMark = true,
     .indentation = "\t"},
    {.name = "systemd",
     .comments = "#;",
     .continuation = Continuation::Backslash,
     .endsAtLastBracket = true,
     .mayRepeat = true,
     .skipsMark = true,
     .separator = "="},
    {.name = "php",
     .comments = ";",
     .values = Values::Php,
     .forbidden = "?{}|&~!()^\"$",
     .bareValue = "",
     .hasReservedWords = true,
     .hasOptionsBeforeSections = true,
     .mayRepeat = true},
    {.name = "python",
     .comments = "#;",
     .separators = "=:",
     .options = Names::AnyCase,
     .continuation = Continuation::Indentation,
     .endsAtLastBracket = true},
    {.name = "desktop", .comments = "#", .separator = "="},
};

constexpr std::string_view kReservedWords[] = {"on", "off", "true", "false", "yes", "no", "null", "none"};

}  // namespace

const Dialect& kLibraryDialect = kDialects[0];

const Dialect* dialectOf(std::string_view name) {
  const auto* const found = std::ranges::find(kDialects, name, &Dialect::name);
  return found != std::end(kDialects) ? found : nullptr;
}

bool isNameCharacter(char c) {
  return isAsciiLetter(c) || isAsciiDigit(c) || c == '-';
}

bool isReservedWord(std::string_view word) {
  const std::string key = keyOf(Names::AnyCase, word);
  return std::ranges::find(kReservedWords, key) != std::end(kReservedWords);
}

bool isOptionName(const Dialect& dialect, std::string_view name) {
  if (name.empty() || (dialect.hasReservedWords && isReservedWord(name))) return false;
  if (dialect.hasSubsections) return isAsciiLetter(name[0]) && std::ranges::all_of(name, isNameCharacter);
  return name.substr(0, name.find('[')).find_first_of(dialect.forbidden) == std::string_view::npos;
}

std::string keyOf(Names names, std::string_view name) {
  std::string key(name);
  const std::size_t dot = names == Names::Subsections ? std::min(name.find('.'), name.size()) : name.size();
  if (names != Names::Exact)
    std::transform(key.begin(), key.begin() + static_cast<std::ptrdiff_t>(dot), key.begin(), toAsciiLower);
  return key;
}

}  // namespace vel::velini
