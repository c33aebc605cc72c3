// Finds what is wrong with a text as a whole: an encoding that no program expects, and options that belong to
// no section.
#pragma once

#include <string_view>
#include <vector>

#include "tools/velini/texts.h"

namespace vel::velini {

/// A fault in a text; lines count from 1.
struct Fault {
  std::size_t line;
  TextId text;
};

/// Whether the text is UTF-16 or UTF-32: it begins with the byte order mark of one, or half of its first
/// bytes are NUL.
bool isWide(std::string_view text);
bool hasUtf8Mark(std::string_view text);

/// Adds the first NUL byte, as `nulFault`, and the first carriage return that no line feed follows, unless
/// `ignoresReturns`. Sorts the faults by line.
void addByteFaults(std::string_view text, TextId nulFault, bool ignoresReturns, std::vector<Fault>& faults);
/// Returns the position of the first carriage return that no line feed follows, or npos.
std::size_t findLoneReturn(std::string_view text);

/// Returns the faults that keep a program from finding the first section.
std::vector<Fault> faultsBeforeSection(std::string_view text);

}  // namespace vel::velini
