// The names of the switches in a usage string: which one an abbreviation means, and which ones an unknown
// name resembles.
#pragma once

#include <string_view>

#include "foundation/allocator.h"

namespace vel::consoleui {

/// The names of switches without "-".
using SwitchNames = Vector<std::string_view>;

/// Returns the names in their order. They point into the usage string. Those of tagged lines are only there
/// with `withTagged`.
SwitchNames switchNamesOf(const char* usage, bool withTagged);

/// Returns the only name that begins with `beginning`, or an empty text if there is none or more than one. A
/// whole name means itself.
std::string_view completedName(const SwitchNames& names, std::string_view beginning);

/// What the beginnings of names can mean.
struct Abbreviations {
  SwitchNames whole;  ///< these are never the beginning of another
  SwitchNames oneDash,
      twoDashes;  ///< the names that switches with so many dashes can have, each of them once

  /// Returns the name that a switch means, or `typed` itself if there is none or more than one.
  std::string_view meaningOf(std::string_view typed, bool hasTwoDashes) const;
};

/// Returns up to three names that resemble `name`, the most similar ones first. A name resembles another that
/// begins with it, from two characters on, or that differs from it in at most a third of its characters, and
/// at least one.
SwitchNames similarNames(const SwitchNames& names, std::string_view name);

}  // namespace vel::consoleui
