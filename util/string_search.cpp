// Searches a text for a plain pattern that is prepared once. Matching whole texts against wildcards is
// wildcard_pattern.cpp's work.
//
// Two algorithms share the work. First, unless case is ignored, blocks of the text are scanned for the
// pattern's first and last byte at their distance (after W. Mula, SIMD-friendly algorithms for substring
// searching); it runs at the speed of memory as long as that pair is rare. Then Horspool's search continues
// (R. N. Horspool, Practical fast searching in strings, 1980): the text byte under the pattern's last one
// tells how far the window may move.
//
//   text     ..a b c a x b..      'x' is not in the pattern: the window moves by its whole length
//   pattern    a b c a b
//
// The window over the text only ever moves forward, so every search ends, and no byte outside the text is
// read.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>

#include "base/byte_blocks.h"
#include "foundation/allocator.h"
#include "vel_include/vel_util.h"

namespace {

unsigned char byteOf(char c) {
  return static_cast<unsigned char>(c);
}

/// The byte as it is compared: in upper case when case is ignored.
unsigned char foldedByte(char c, bool ignoreCase) {
  return ignoreCase ? static_cast<unsigned char>(std::toupper(byteOf(c))) : byteOf(c);
}

/// Folds the pattern once, so that only the text's bytes are folded during a search. The caller frees the
/// copy.
const char* upperCasedCopy(const char* text) {
  const std::size_t length = std::strlen(text);
  vel::OwnedText copy = vel::copyText(text, length);
  std::transform(copy.get(), copy.get() + length, copy.get(),
                 [](char c) { return static_cast<char>(foldedByte(c, true)); });
  return copy.release();
}

/// Compares backwards, with the text's bytes folded like the pattern's.
bool matchesAt(const char* pattern, std::size_t patternLength, const char* text, bool ignoreCase) {
  for (std::size_t i = patternLength; i > 0; --i)
    if (byteOf(pattern[i - 1]) != foldedByte(text[i - 1], ignoreCase)) return false;
  return true;
}

/// Skips blocks of a long text that do not contain the pattern's first and last byte at their distance.
/// Returns the position of the first match, or the position from which on Horspool's search has to continue:
/// near the end of the text, or where comparing candidates has cost more than it saved. That limit, about two
/// bytes compared for each byte scanned, keeps texts that consist of candidates from taking quadratic time
/// here.
std::size_t skipToCandidate(const char* pattern, std::size_t patternLength, const char* text,
                            std::size_t length) {
  const std::size_t distance = patternLength - 1;
  const std::size_t middle = patternLength / 2;
  const vel::BytePair ends(vel::OneByte{byteOf(pattern[0])}, vel::OneByte{byteOf(pattern[distance])},
                           distance);
  std::size_t block = 0;
  for (std::size_t comparedBytes = 0; length - block >= vel::kBytesAtOnce + distance;
       block += vel::kBytesAtOnce) {
    const char* const place = ends.find(text + block, [&](const char* candidate) {
      comparedBytes += patternLength;
      // The middle byte rejects most candidates without a call.
      return candidate[middle] == pattern[middle] && std::memcmp(candidate, pattern, patternLength) == 0;
    });
    if (place != nullptr) return static_cast<std::size_t>(place - text);
    if (comparedBytes > 4096 + 2 * block) return block + vel::kBytesAtOnce;
  }
  return block;
}

/// Returns the first match or null. shift[0] holds the pattern's length: no pattern contains a NUL.
const char* find(const char* pattern, const uint32_t (&shift)[256], const char* text, std::size_t length,
                 bool ignoreCase) {
  const std::size_t patternLength = shift[0];
  if (patternLength == 0) return text;
  std::size_t start = 0;
  if (!ignoreCase && length >= patternLength) start = skipToCandidate(pattern, patternLength, text, length);
  while (length - start >= patternLength) {
    if (matchesAt(pattern, patternLength, text + start, ignoreCase)) return text + start;
    start += shift[foldedByte(text[start + patternLength - 1], ignoreCase)];
  }
  return nullptr;
}

}  // namespace

VelClStringSearch::VelClStringSearch(const char* pattern, bool ignoreCase)
    : VelClStringMatchABase(pattern, ignoreCase), shift_{} {
  if (ignoreCase) pattern_ = upperCasedCopy(pattern_);
  const auto length = static_cast<uint32_t>(std::strlen(pattern_));
  std::fill(std::begin(shift_), std::end(shift_), length);
  // The last byte is left out: the window always moves, and under itself that byte would shift by 0.
  for (uint32_t i = 0; i + 1 < length; ++i) shift_[byteOf(pattern_[i])] = length - 1 - i;
}

VelClStringSearch::~VelClStringSearch() {
  if (flag_) VelClMemoryManager::free(const_cast<char*>(pattern_));
}

const char* VelClStringSearch::getPattern(const char* text) const {
  return find(pattern_, shift_, text, text != nullptr ? std::strlen(text) : 0, flag_);
}

const char* VelClStringSearch::getPattern(const char* text, unsigned int length) const {
  return find(pattern_, shift_, text, text != nullptr ? length : 0, flag_);
}
