// Decides whether the value of a setting switches it on. Everything that has such settings uses this rule.
#pragma once

#include <initializer_list>

#include "base/ascii.h"

namespace vel {

/// True for ON, YES, TRUE or 1, in any case, without trimming blanks. False for null.
constexpr bool isEnabledValue(const char* value) noexcept {
  if (value == nullptr) return false;
  for (const char* enabled : {"ON", "YES", "TRUE", "1"})
    if (equalsIgnoringAsciiCase(value, enabled)) return true;
  return false;
}

}  // namespace vel
