#include "tools/velini/dialect.h"

#include <algorithm>

#include "base/ascii.h"

namespace vel::velini {

namespace {

constexpr Dialect kDialects[] = {
    {.name = "ini",
     .comments = ";",
     .separators = "=",
     .sections = Names::AnyCase,
     .options = Names::AnyCase,
     .continuation = Continuation::Indentation,
     .values = Values::Library,
     .bareValue = nullptr,
     .hasSubsections = false,
     .endsAtLastBracket = false,
     .hasOptionsBeforeSections = false,
     .mayRepeat = false,
     .skipsMark = false,
     .indentation = "",
     .separator = " = "},
    {.name = "git",
     .comments = "#;",
     .separators = "=",
     .sections = Names::Subsections,
     .options = Names::AnyCase,
     .continuation = Continuation::Backslash,
     .values = Values::Git,
     .bareValue = "true",
     .hasSubsections = true,
     .endsAtLastBracket = false,
     .hasOptionsBeforeSections = false,
     .mayRepeat = true,
     .skipsMark = true,
     .indentation = "\t",
     .separator = " = "},
    {.name = "systemd",
     .comments = "#;",
     .separators = "=",
     .sections = Names::Exact,
     .options = Names::Exact,
     .continuation = Continuation::Backslash,
     .values = Values::Plain,
     .bareValue = nullptr,
     .hasSubsections = false,
     .endsAtLastBracket = true,
     .hasOptionsBeforeSections = false,
     .mayRepeat = true,
     .skipsMark = true,
     .indentation = "",
     .separator = "="},
    {.name = "php",
     .comments = ";",
     .separators = "=",
     .sections = Names::Exact,
     .options = Names::Exact,
     .continuation = Continuation::None,
     .values = Values::Php,
     .bareValue = "",
     .hasSubsections = false,
     .endsAtLastBracket = false,
     .hasOptionsBeforeSections = true,
     .mayRepeat = true,
     .skipsMark = false,
     .indentation = "",
     .separator = " = "},
    {.name = "python",
     .comments = "#;",
     .separators = "=:",
     .sections = Names::Exact,
     .options = Names::AnyCase,
     .continuation = Continuation::Indentation,
     .values = Values::Plain,
     .bareValue = nullptr,
     .hasSubsections = false,
     .endsAtLastBracket = true,
     .hasOptionsBeforeSections = false,
     .mayRepeat = false,
     .skipsMark = false,
     .indentation = "",
     .separator = " = "},
    {.name = "desktop",
     .comments = "#",
     .separators = "=",
     .sections = Names::Exact,
     .options = Names::Exact,
     .continuation = Continuation::None,
     .values = Values::Plain,
     .bareValue = nullptr,
     .hasSubsections = false,
     .endsAtLastBracket = false,
     .hasOptionsBeforeSections = false,
     .mayRepeat = false,
     .skipsMark = false,
     .indentation = "",
     .separator = "="},
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
