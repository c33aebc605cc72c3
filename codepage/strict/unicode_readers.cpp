// Strict readers of UTF-8 and of UTF-16 in either byte order. They find the well-formed prefix; the
// converters, which accept more, convert it.
#include "codepage/strict/unicode_readers.h"

#include <algorithm>

#include "codepage/conversion.h"
#include "foundation/allocator.h"

namespace vel::codepage {

namespace {

// ---- UTF-8 -----------------------------------------------------------------------------------

/// A finite automaton of well-formed UTF-8 (RFC 3629) whose every step is one load and one shift, without a
/// branch. It is a shift-based DFA: each byte has a 64-bit row with the next state for every state, six bits
/// each; and a state is represented by the position of its own six bits in the rows. So
///
///   next state = (row of the byte >> state) & 0x3F
///
/// and the mask can wait until the result is used, because shifts look at six bits only. Ten states would
/// fit; there are nine. P. Vognsen has described the technique under this name.
class WellFormedness {
 public:
  static constexpr std::uint64_t kWhole = 0;

  static std::uint64_t step(std::uint64_t state, unsigned char byte) {
    return kRows.rows[byte] >> (state & kPlaceMask);
  }
  static constexpr bool isWhole(std::uint64_t state) { return (state & kPlaceMask) == kWhole; }
  static constexpr bool isIllFormed(std::uint64_t state) {
    return (state & kPlaceMask) == placeOf(kIllFormed);
  }

 private:
  enum State : unsigned int {
    kStart,
    kOneMore,
    kTwoMore,
    kThreeMore,
    kE0,
    kEd,
    kF0,
    kF4,
    kIllFormed,
    kStates
  };
  static constexpr unsigned int kBits = 6;
  static constexpr std::uint64_t kPlaceMask = 0x3F;
  static constexpr std::uint64_t placeOf(State state) { return std::uint64_t{state} * kBits; }

  static consteval State afterLead(unsigned int byte) {
    if (byte < 0x80) return kStart;
    if (byte < 0xC2 || byte > 0xF4) return kIllFormed;
    if (byte < 0xE0) return kOneMore;
    if (byte < 0xF0) return byte == 0xE0 ? kE0 : byte == 0xED ? kEd : kTwoMore;
    return byte == 0xF0 ? kF0 : byte == 0xF4 ? kF4 : kThreeMore;
  }
  static consteval State next(State state, unsigned int byte) {
    if (state == kStart) return afterLead(byte);
    if (byte < 0x80 || byte > 0xBF) return kIllFormed;
    switch (state) {
      case kOneMore:
        return kStart;
      case kTwoMore:
        return kOneMore;
      case kThreeMore:
        return kTwoMore;
      case kE0:
        return byte >= 0xA0 ? kOneMore : kIllFormed;
      case kEd:
        return byte < 0xA0 ? kOneMore : kIllFormed;
      case kF0:
        return byte >= 0x90 ? kTwoMore : kIllFormed;
      case kF4:
        return byte < 0x90 ? kTwoMore : kIllFormed;
      default:
        return kIllFormed;
    }
  }
  struct Rows {
    std::uint64_t rows[256];
    consteval Rows() : rows() {
      for (unsigned int byte = 0; byte < 256; ++byte)
        for (unsigned int state = 0; state < kStates; ++state)
          rows[byte] |= placeOf(next(static_cast<State>(state), byte)) << (state * kBits);
    }
  };
  static const Rows kRows;
};

constinit const WellFormedness::Rows WellFormedness::kRows;

constexpr std::size_t kBlock = 32;

bool isAscii(const unsigned char* block) {
  std::uint64_t words[kBlock / 8];
  std::memcpy(words, block, sizeof words);
  return ((words[0] | words[1] | words[2] | words[3]) & 0x8080808080808080) == 0;
}

/// Returns the size of the prefix that is whole, well-formed characters. Blocks are checked first, pure ASCII
/// by one test and others by the automaton. From the first ill-formed block on, or at the end, characters are
/// examined one by one, which finds the exact place.
std::size_t wellFormedPrefix(const unsigned char* text, std::size_t size) {
  std::size_t i = 0;
  std::uint64_t state = WellFormedness::kWhole;
  for (; i + kBlock <= size; i += kBlock) {
    if (WellFormedness::isWhole(state) && isAscii(text + i)) continue;
    std::uint64_t next = state;
    for (std::size_t at = 0; at < kBlock; ++at) next = WellFormedness::step(next, text[i + at]);
    if (WellFormedness::isIllFormed(next)) break;
    state = next;
  }
  // If the last block checked ends within a character, go back to the lead byte, which exists because the
  // state says that a character has begun.
  if (!WellFormedness::isWhole(state)) {
    do --i;
    while (text[i] < 0xC0);
  }
  while (i < size) {
    const Utf8Sequence sequence = utf8SequenceAt(text + i, size - i);
    if (!sequence.isValid) return i;
    i += sequence.size;
  }
  return i;
}

class Utf8Reader : public Reader {
 public:
  explicit Utf8Reader(const VelClCCSID& source) : converter_(source) {}

  ReadResult read(const char* source, std::size_t size, bool isLast, char16_t* units,
                  std::size_t capacity) override {
    const auto* const text = reinterpret_cast<const unsigned char*>(source);
    // No byte becomes more than one unit, so this many bytes fit.
    ReadResult result{.consumed = wellFormedPrefix(text, std::min(size, capacity))};
    result.units = converter_.convertBytes(reinterpret_cast<char*>(units), capacity * kUnitSize, source,
                                           result.consumed) /
                   kUnitSize;
    if (result.consumed == size) return result;
    const Utf8Sequence next = utf8SequenceAt(text + result.consumed, size - result.consumed);
    if (next.isValid || (next.isTruncated && !isLast)) return result;
    result.fault = next.isTruncated ? Fault::INCOMPLETE : Fault::INVALID_SEQUENCE;
    result.faultSize = next.size;
    return result;
  }

  std::size_t sizeBefore(const char* source, std::size_t, std::size_t unit) const override {
    const char* position = source;
    for (std::size_t i = 0; i < unit;) {
      const std::size_t size = utf8SequenceAt(reinterpret_cast<const unsigned char*>(position), 4).size;
      position += size;
      i += size == 4 ? 2 : 1;
    }
    return static_cast<std::size_t>(position - source);
  }

 private:
  VelClCodePage2UnicodeConverter converter_;
};

// ---- UTF-16 ----------------------------------------------------------------------------------

bool hasSurrogates(const char16_t* units, std::size_t count) {
  std::uint16_t found = 0;
  for (std::size_t i = 0; i < count; ++i)
    found = static_cast<std::uint16_t>(found | (isSurrogate(units[i]) ? 1 : 0));
  return found != 0;
}

/// Returns how many units at the start are whole characters. Most texts do not contain surrogates: a
/// vectorised loop tests for that, and only texts with surrogates are walked through.
std::size_t wholeCharacters(const char16_t* units, std::size_t count) {
  if (!hasSurrogates(units, count)) return count;
  std::size_t i = 0;
  while (i < count) {
    const std::size_t size = unitsOfFirstCharacter(units + i, count - i);
    if (size == 1 && isSurrogate(units[i])) break;
    i += size;
  }
  return i;
}

class Utf16Reader : public Reader {
 public:
  explicit Utf16Reader(const VelClCCSID& source) : converter_(source) {}

  ReadResult read(const char* source, std::size_t size, bool isLast, char16_t* units,
                  std::size_t capacity) override {
    const std::size_t count = std::min(size / kUnitSize, capacity);
    converter_.convertBytes(reinterpret_cast<char*>(units), capacity * kUnitSize, source, count * kUnitSize);
    ReadResult result;
    result.units = wholeCharacters(units, count);
    result.consumed = result.units * kUnitSize;
    const std::size_t left = size - result.consumed;
    if (result.units < count && (result.units + 1 < count || isLowSurrogate(units[result.units]))) {
      result.fault = Fault::INVALID_SEQUENCE;
      result.faultSize = kUnitSize;
    } else if (isLast && left > 0 && left < 2 * kUnitSize && count < capacity) {
      // The rest is a high surrogate, the first byte of a unit, or both.
      result.fault = Fault::INCOMPLETE;
      result.faultSize = left;
    }
    return result;
  }

  std::size_t sizeBefore(const char*, std::size_t, std::size_t unit) const override {
    return unit * kUnitSize;
  }

 private:
  VelClCodePage2UnicodeConverter converter_;
};

}  // namespace

Reader* makeUtf8Reader(const VelClCCSID& source) {
  return create<Utf8Reader>(source);
}

Reader* makeUtf16Reader(const VelClCCSID& source) {
  return create<Utf16Reader>(source);
}

}  // namespace vel::codepage
