// The user's locale by the environment, for programs that never call setlocale().
#pragma once

#include <cstdlib>
#include <initializer_list>

namespace vel::platform {

/// Returns the locale's name for one category, "" if none is set: the first variable that is set and not
/// empty counts, in the order of setlocale().
inline const char* localeNameFor(const char* category) noexcept {
  for (const char* const variable : {"LC_ALL", category, "LANG"}) {
    const char* const value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return value;
  }
  return "";
}

}  // namespace vel::platform
