// Searching, counting and copying characters.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>

#include "base/byte_blocks.h"
#include "vel_include/vel_helpers.h"

namespace {

bool equalInLowerCase(char a, char b) noexcept {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

/// The characters that count as the same; false when there are more than two.
bool findCaseVariants(char c, vel::ByteChoice& choice) noexcept {
  int count = 0;
  for (int byte = 1; byte < 256; ++byte) {
    if (!equalInLowerCase(static_cast<char>(byte), c)) continue;
    choice.other = static_cast<unsigned char>(byte);
    if (count++ == 0) choice.one = choice.other;
  }
  return count == 1 || count == 2;
}

/// Passes over parts of a text in which a pattern's first two characters do not stand side by side.
class CandidateFinder {
 public:
  explicit CandidateFinder(const char* pattern) noexcept : first_{}, second_{} {
    distance_ = pattern[1] == '\0' ? 0 : 1;
    isUsable_ = findCaseVariants(*pattern, first_) && findCaseVariants(pattern[distance_], second_);
  }

  /// The next place where the search, which is to compare `start` with the pattern's first character, will do
  /// so again: where they stand, or near the end.
  const char* find(const char* start, const char* end) const noexcept {
    if (!isUsable_) return start;
    const vel::BytePair pair(first_, second_, distance_);
    const char* block = start;
    for (; end - block > static_cast<std::ptrdiff_t>(vel::kBytesAtOnce); block += vel::kBytesAtOnce) {
      const char* const place =
          pair.find(block, [&](const char* candidate) { return isComparedWithStart(start, candidate); });
      if (place != nullptr) return place;
    }
    const bool wasMismatch = block != start && first_.has(block[-1]) && isComparedWithStart(start, block - 1);
    return wasMismatch ? block + 1 : block;
  }

 private:
  /// Of characters like the first one in a row, every second is only the mismatch of the one before.
  bool isComparedWithStart(const char* start, const char* place) const noexcept {
    const char* row = place;
    while (row != start && first_.has(row[-1])) --row;
    return (place - row) % 2 == 0;
  }

  vel::ByteChoice first_;
  vel::ByteChoice second_;
  std::size_t distance_;
  bool isUsable_;
};

class CaseInsensitiveSearch {
 public:
  CaseInsensitiveSearch(const char* text, const char* pattern) noexcept
      : text_(text), pattern_(pattern), expected_(pattern) {}

  const char* find() noexcept {
    // For a short text it does not pay to find out which characters count as the same.
    constexpr int kShortText = 512;
    for (int i = 0; i < kShortText || expected_ != pattern_; ++i) {
      if (isFound()) return matchStart();
      if (*text_ == '\0') return nullptr;
      step();
    }
    return findInLongText();
  }

 private:
  const char* findInLongText() noexcept {
    const CandidateFinder candidates(pattern_);
    const char* const end = text_ + std::strlen(text_);
    while (!isFound()) {
      if (expected_ == pattern_) text_ = candidates.find(text_, end);
      if (text_ == end) return nullptr;
      step();
    }
    return matchStart();
  }

  bool isFound() const noexcept { return *expected_ == '\0'; }
  const char* matchStart() const noexcept { return text_ - (expected_ - pattern_); }
  void step() noexcept {
    // A mismatching character is not compared with the pattern's start again. Keep.
    expected_ = equalInLowerCase(*text_, *expected_) ? expected_ + 1 : pattern_;
    ++text_;
  }

  const char* text_;
  const char* pattern_;
  const char* expected_;  ///< in the pattern, what the next character is compared with
};

}  // namespace

char* velStrFind(const char* text, const char* pattern, bool ignoreCase) {
  return const_cast<char*>(ignoreCase ? CaseInsensitiveSearch(text, pattern).find()
                                      : std::strstr(text, pattern));
}

unsigned int velStrCount(const char* text, char c) {
  return static_cast<unsigned int>(std::count(text, text + std::strlen(text), c));
}

unsigned int velStrCopyUntil(char* out, const char* text, char stop) {
  unsigned int count = 0;
  for (; text[count] != '\0' && text[count] != stop; ++count) out[count] = text[count];
  out[count] = '\0';
  return count;
}
