// The one rule for a setting that switches something on.
#pragma once

#include <initializer_list>

#include "base/ascii.h"

namespace vel {

/// ON, YES, TRUE or 1, in any letter case; nothing is trimmed. Null is not enabled.
constexpr bool isEnabledValue(const char* value) noexcept {
  if (value == nullptr) return false;
  for (const char* enabled : {"ON", "YES", "TRUE", "1"})
    if (equalsIgnoringAsciiCase(value, enabled)) return true;
  return false;
}

}  // namespace vel
