// Searches, counts and copies characters of NUL-terminated strings. Searching many texts for one pattern is
// util/string_search.cpp's work.
//
// The case-insensitive search does not backtrack. It walks the text once with a position in the pattern; a
// mismatch resets the position to the start, and the mismatching character is consumed:
//
//   pattern "ab"   text "xaab"    x  a=a  a!=b  b!=a    not found
//                  text "aaab"    a=a  a!=b  a=a  b=b   found at 2
//
// Long texts are scanned in blocks for the pattern's first two characters. The scan may only skip to
// positions that the walk would compare with the pattern's start, or the results would differ.
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

/// Finds the bytes that equal `c` in lower case. Returns false if there are more than two, as a locale
/// may have; the block scan cannot be used then.
bool findCaseVariants(char c, vel::ByteChoice& choice) noexcept {
  int count = 0;
  for (int byte = 1; byte < 256; ++byte) {
    if (!equalInLowerCase(static_cast<char>(byte), c)) continue;
    choice.other = static_cast<unsigned char>(byte);
    if (count++ == 0) choice.one = choice.other;
  }
  return count == 1 || count == 2;
}

/// Skips parts of a text that do not contain the pattern's first two characters side by side (or its only
/// character).
class CandidateFinder {
 public:
  explicit CandidateFinder(const char* pattern) noexcept : first_{}, second_{} {
    distance_ = pattern[1] == '\0' ? 0 : 1;
    isUsable_ = findCaseVariants(*pattern, first_) && findCaseVariants(pattern[distance_], second_);
  }

  /// Returns the next position where the walk may find the pattern and compares with its start: a candidate,
  /// or a position at most one block before the end (`start` if the locale rules out the scan). The walk
  /// compares `start` itself with the pattern's start.
  const char* find(const char* start, const char* end) const noexcept {
    if (!isUsable_) return start;
    const vel::BytePair pair(first_, second_, distance_);
    const char* block = start;
    for (; end - block > static_cast<std::ptrdiff_t>(vel::kBytesAtOnce); block += vel::kBytesAtOnce) {
      const char* const place =
          pair.find(block, [&](const char* candidate) { return isComparedWithStart(start, candidate); });
      if (place != nullptr) return place;
    }
    // The last character scanned may have matched the first one; the walk consumes the next as its mismatch.
    const bool wasMismatch = block != start && first_.has(block[-1]) && isComparedWithStart(start, block - 1);
    return wasMismatch ? block + 1 : block;
  }

 private:
  /// Whether the walk compares `place` with the pattern's start. In a run of characters that equal the first
  /// one, the walk matches one and consumes the next as its mismatch, so only those at an even distance from
  /// the run's beginning count. (If the second character equals the first, the run's beginning is a
  /// candidate.)
  bool isComparedWithStart(const char* start, const char* place) const noexcept {
    const char* run = place;
    while (run != start && first_.has(run[-1])) --run;
    return (place - run) % 2 == 0;
  }

  vel::ByteChoice first_;
  vel::ByteChoice second_;
  std::size_t distance_;
  bool isUsable_;
};

/// The walk described at the top of this file.
class CaseInsensitiveSearch {
 public:
  CaseInsensitiveSearch(const char* text, const char* pattern) noexcept
      : text_(text), pattern_(pattern), expected_(pattern) {}

  const char* find() noexcept {
    // Finding the case variants compares 255 characters, which does not pay off for a short text. The walk
    // changes over only between two attempts.
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
    // Intentional: a mismatching character is consumed and not compared with the pattern's start; the
    // documented result is that of this walk, which misses "ab" in "aab".
    expected_ = equalInLowerCase(*text_, *expected_) ? expected_ + 1 : pattern_;
    ++text_;
  }

  const char* text_;
  const char* pattern_;
  const char* expected_;  ///< position in the pattern to compare the next character with
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
