// How much two names differ.
#pragma once

#include <cstddef>
#include <string_view>

namespace vel::consoleui {

/// The longest name in characters that is compared.
inline constexpr std::size_t kMaxComparedLength = 32;

/// Returns how many characters must be inserted, removed, replaced or exchanged with their neighbour to make
/// one name of the other: the optimal string alignment distance, a restricted form of that of Damerau and
/// Levenshtein. ASCII letters of different case count as equal. Names are UTF-8; a byte of an ill-formed name
/// counts as a character. Names longer than kMaxComparedLength have a distance that no name of that length
/// has.
std::size_t editDistance(std::string_view a, std::string_view b) noexcept;

}  // namespace vel::consoleui
