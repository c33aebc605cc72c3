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
     .bareValue = "",
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

}  // namespace

const Dialect& kLibraryDialect = kDialects[0];

const Dialect* dialectOf(std::string_view name) {
  const auto* const found = std::ranges::find(kDialects, name, &Dialect::name);
  return found != std::end(kDialects) ? found : nullptr;
}

std::string keyOf(Names names, std::string_view name) {
  std::string key(name);
  const std::size_t dot = names == Names::Subsections ? std::min(name.find('.'), name.size()) : name.size();
  if (names != Names::Exact)
    std::transform(key.begin(), key.begin() + static_cast<std::ptrdiff_t>(dot), key.begin(), toAsciiLower);
  return key;
}

}  // namespace vel::velini
