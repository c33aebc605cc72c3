// Converts UTF-8 that arrives in pieces to UTF-16, for consoles. A piece may end within a character.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "base/utf.h"

namespace vel {

class Utf16Pieces {
 public:
  /// Converts one piece. `write(units, count)` receives the UTF-16, at most kMaxUnits at a time and only
  /// whole characters, and returns whether that was written. Ill-formed sequences become U+FFFD. The
  /// beginning of a character at the end of the piece is kept for the next one. Returns false as soon as
  /// `write` does; the rest of the piece is dropped then.
  template <typename Write>
  bool append(std::string_view piece, Write write) {
    count_ = 0;
    while (pendingSize_ > 0 && !piece.empty()) {
      pending_[pendingSize_++] = piece.front();
      piece.remove_prefix(1);
      if (!takePending(write)) return false;
    }
    while (!piece.empty()) {
      const Utf8Sequence sequence = sequenceAt(piece);
      if (sequence.isTruncated) {
        pendingSize_ = piece.copy(pending_.data(), piece.size());
        break;
      }
      if (!put(piece.substr(0, sequence.size), sequence.isValid, write)) return false;
      piece.remove_prefix(sequence.size);
    }
    return flush(write);
  }

  static constexpr std::size_t kMaxUnits = 1024;

 private:
  static Utf8Sequence sequenceAt(std::string_view text) noexcept {
    return utf8SequenceAt(reinterpret_cast<const unsigned char*>(text.data()), text.size());
  }

  /// Converts the kept bytes, once they are a character or cannot become one.
  template <typename Write>
  bool takePending(Write& write) {
    while (pendingSize_ > 0) {
      const Utf8Sequence sequence = sequenceAt({pending_.data(), pendingSize_});
      if (sequence.isTruncated) return true;
      if (!put({pending_.data(), sequence.size}, sequence.isValid, write)) return false;
      std::copy(pending_.begin() + sequence.size, pending_.begin() + pendingSize_, pending_.begin());
      pendingSize_ -= sequence.size;
    }
    return true;
  }

  template <typename Write>
  bool put(std::string_view sequence, bool isValid, Write& write) {
    if (count_ + 2 > kMaxUnits && !flush(write)) return false;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(sequence.data());
    const char32_t character = isValid ? decodeUtf8(bytes, sequence.size()) : kReplacementCharacter;
    if (character < kFirstSupplementary) {
      units_[count_++] = static_cast<char16_t>(character);
    } else {
      units_[count_++] = highSurrogateOf(character);
      units_[count_++] = lowSurrogateOf(character);
    }
    return true;
  }

  template <typename Write>
  bool flush(Write& write) {
    const std::size_t count = count_;
    count_ = 0;
    return count == 0 || write(units_.data(), count);
  }

  std::array<char, kMaxUtf8Bytes> pending_{};
  std::size_t pendingSize_ = 0;
  std::array<char16_t, kMaxUnits> units_{};
  std::size_t count_ = 0;
};

}  // namespace vel
