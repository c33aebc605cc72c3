// Keeps the last three rows of the table of distances between all beginnings of both names.
#include "consoleui/edit_distance.h"

#include <algorithm>
#include <array>

#include "base/ascii.h"
#include "base/utf.h"

namespace vel::consoleui {
namespace {

using Row = std::array<std::size_t, kMaxComparedLength + 1>;

/// The characters of a name in lower case. One beyond the limit is counted but not kept.
struct Characters {
  explicit Characters(std::string_view name) noexcept {
    while (!name.empty() && count <= kMaxComparedLength) {
      const auto sequence = utf8SequenceAt(reinterpret_cast<const unsigned char*>(name.data()), name.size());
      const std::size_t size = sequence.isValid ? sequence.size : 1;
      // The bytes as they are identify a character; its code point is not needed.
      char32_t bytes = 0;
      for (std::size_t i = 0; i < size; ++i)
        bytes = bytes << 8 | static_cast<unsigned char>(toAsciiLower(name[i]));
      if (count < kMaxComparedLength) characters[count] = bytes;
      ++count;
      name.remove_prefix(size);
    }
  }

  bool isTooLong() const noexcept { return count > kMaxComparedLength; }

  std::array<char32_t, kMaxComparedLength> characters{};
  std::size_t count = 0;
};

/// Whether the two characters that end at `i` and `j` are exchanged.
bool isExchange(const Characters& a, std::size_t i, const Characters& b, std::size_t j) noexcept {
  return i > 1 && j > 1 && a.characters[i - 1] == b.characters[j - 2] &&
         a.characters[i - 2] == b.characters[j - 1];
}

}  // namespace

std::size_t editDistance(std::string_view left, std::string_view right) noexcept {
  const Characters a(left), b(right);
  if (a.isTooLong() || b.isTooLong()) return kMaxComparedLength + 1;
  Row twoBefore{}, before{}, row{};
  for (std::size_t j = 0; j <= b.count; ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.count; ++i) {
    twoBefore = before;
    before = row;
    row[0] = i;
    for (std::size_t j = 1; j <= b.count; ++j) {
      const std::size_t replaced = before[j - 1] + (a.characters[i - 1] == b.characters[j - 1] ? 0 : 1);
      row[j] = std::min({before[j] + 1, row[j - 1] + 1, replaced});
      if (isExchange(a, i, b, j)) row[j] = std::min(row[j], twoBefore[j - 2] + 1);
    }
  }
  return row[b.count];
}

}  // namespace vel::consoleui
