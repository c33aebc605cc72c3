// The one rule for a setting that switches something on.
#ifndef FOUNDATION_ENABLED_RULE_H_
#define FOUNDATION_ENABLED_RULE_H_

#include "foundation/ascii.h"

namespace vel {

/// ON, YES, TRUE or 1, in any letter case; nothing is trimmed. Null is not enabled.
constexpr bool isEnabledValue(const char* value) noexcept {
  if (value == nullptr) return false;
  for (const char* enabled : {"ON", "YES", "TRUE", "1"})
    if (equalsIgnoringAsciiCase(value, enabled)) return true;
  return false;
}

}  // namespace vel

#endif
