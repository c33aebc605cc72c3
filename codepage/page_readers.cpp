// Strict readers of code pages: those of single bytes, and all others, with lead bytes or shifts.
#include <algorithm>
#include <iterator>

#include "codepage/conversion.h"
#include "codepage/page_characters.h"
#include "codepage/strict_reader.h"
#include "foundation/allocator.h"

namespace vel::codepage {

namespace {

using Route = VelClConverterABase::VelEnRoute;
using Kind = Meaning::Kind;

struct SingleBytes {
  char16_t units[256];
  bool isUnmapped[256];
  bool hasUnmapped;
};

class SingleByteReader : public Reader {
 public:
  SingleByteReader(const VelClCCSID& source, const SingleBytes& bytes) : converter_(source), bytes_(bytes) {}

  Reading read(const char* source, std::size_t size, bool, char16_t* units, std::size_t capacity) override {
    Reading reading;
    const std::size_t room = std::min(size, capacity);
    reading.consumed = reading.units = bytes_.hasUnmapped ? mappedPrefix(source, room) : room;
    convert(source, reading.units, units);
    if (reading.consumed == room) return reading;
    reading.fault = Fault::INVALID_SEQUENCE;
    reading.faultSize = 1;
    return reading;
  }

  std::size_t sizeBefore(const char*, std::size_t, std::size_t unit) const override { return unit; }

 private:
  std::size_t mappedPrefix(const char* source, std::size_t size) const {
    std::size_t i = 0;
    while (i < size && !bytes_.isUnmapped[static_cast<unsigned char>(source[i])]) ++i;
    return i;
  }

  void convert(const char* source, std::size_t size, char16_t* units) const {
    if (converter_.getRoute() == Route::TABLE) {
      // This one folds no next line, whatever the source is.
      Call call{converter_, reinterpret_cast<char*>(units), size * kUnitSize, &source, size};
      velConvertByTablesSBCS_ASCIItoUCS2(call);
      return;
    }
    for (std::size_t i = 0; i < size; ++i) units[i] = bytes_.units[static_cast<unsigned char>(source[i])];
  }

  ReadyToUnicode converter_;
  SingleBytes bytes_;
};

/// Keeps the meanings of the sequences that a text has, each in one place that its bytes give.
class MeaningMemo {
 public:
  MeaningMemo() : entries_(kCount) {}

  /// Unknown at first; the caller puts in what it finds out.
  Meaning& at(const unsigned char* bytes, std::size_t size, bool isShifted) {
    std::uint32_t key = 0;
    for (std::size_t i = 0; i < size; ++i) key = key << 8 | bytes[i];
    const auto length = static_cast<std::uint8_t>(isShifted ? 0x80 + size : size);
    Entry& entry = entries_[(key + length) * 2654435761U >> (32 - kBits)];
    if (entry.key != key || entry.length != length) entry = {key, length, {}};
    return entry.meaning;
  }

 private:
  static constexpr unsigned int kBits = 14;
  static constexpr std::size_t kCount = std::size_t{1} << kBits;

  struct Entry {
    std::uint32_t key = 0;
    std::uint8_t length = 0;
    Meaning meaning;
  };

  Vector<Entry> entries_;
};

class MixedReader : public Reader {
 public:
  MixedReader(const VelClCCSID& source, const Meaning (&singles)[256])
      : converter_(source), characters_(makePageCharacters(converter_)) {
    std::ranges::copy(singles, singles_);
  }

  Reading read(const char* source, std::size_t size, bool isLast, char16_t* units,
               std::size_t capacity) override {
    wasDouble_ = isDouble_;
    Reading reading;
    Text text{reinterpret_cast<const unsigned char*>(source), size};
    if (!walk(isDouble_, text, reading, units, capacity)) return reading;
    if (isLast && reading.consumed < size && reading.fault == Fault::NONE && isCutOff_) {
      reading.fault = Fault::INCOMPLETE;
      reading.faultSize = size - reading.consumed;
      isDouble_ = false;
    } else if (isLast && reading.consumed == size && isDouble_) {
      reading.fault = Fault::INCOMPLETE;
      isDouble_ = false;
    }
    return reading;
  }

  std::size_t sizeBefore(const char* source, std::size_t size, std::size_t unit) const override {
    bool isDouble = wasDouble_;
    Reading reading;
    walk(isDouble, {reinterpret_cast<const unsigned char*>(source), size}, reading, nullptr, unit);
    return reading.consumed;
  }

  void restart() override { isDouble_ = false; }

 private:
  struct Text {
    const unsigned char* bytes;
    std::size_t size;
  };
  struct Step {
    const Meaning* meaning;
    std::size_t size;
  };

  /// Until the end, a fault, or the first character that does not fit; false for the last. Null units are
  /// only counted.
  bool walk(bool& isDouble, const Text& text, Reading& reading, char16_t* units, std::size_t capacity) const {
    isCutOff_ = false;
    while (reading.consumed < text.size) {
      const Text rest{text.bytes + reading.consumed, text.size - reading.consumed};
      if (passShift(isDouble, *rest.bytes)) {
        ++reading.consumed;
        continue;
      }
      const Step step = isDouble ? pairAt(rest) : characterAt(rest);
      if (step.meaning->kind == Kind::Prefix) {
        isCutOff_ = true;
        return true;
      }
      if (step.meaning->kind != Kind::Units) {
        reading.fault = Fault::INVALID_SEQUENCE;
        reading.faultSize = step.size;
        return true;
      }
      if (reading.units + step.meaning->count > capacity) return false;
      if (units != nullptr) std::copy_n(step.meaning->units, step.meaning->count, units + reading.units);
      reading.units += step.meaning->count;
      reading.consumed += step.size;
    }
    return true;
  }

  /// Whether a byte is a shift and no part of a character.
  bool passShift(bool& isDouble, unsigned char byte) const {
    if (!characters_->hasShifts() || (byte != kShiftOut && byte != kShiftIn)) return false;
    const bool toDouble = byte == kShiftOut;
    if (toDouble == isDouble && !characters_->dropsIdleShifts()) return false;
    isDouble = toDouble;
    return true;
  }

  Step pairAt(const Text& text) const {
    if (text.size < 2) return {&kCutOff, 1};
    Meaning& meaning = memo_.at(text.bytes, 2, true);
    if (meaning.kind == Kind::Unknown) meaning = characters_->shiftedPair(text.bytes[0], text.bytes[1]);
    return {&meaning, 2};
  }

  Step characterAt(const Text& text) const {
    const Meaning* meaning = &singles_[*text.bytes];
    std::size_t size = 1;
    for (; meaning->kind == Kind::Prefix && size < std::min(text.size, kLongestSequence); ++size) {
      Meaning& longer = memo_.at(text.bytes, size + 1, false);
      if (longer.kind == Kind::Unknown) longer = characters_->sequence(text.bytes, size + 1);
      meaning = &longer;
    }
    if (meaning->kind == Kind::Prefix && size == kLongestSequence) meaning = &kNothing;
    return {meaning, meaning->kind == Kind::FirstByteFault ? 1 : size};
  }

  static constexpr Meaning kCutOff{Kind::Prefix, 0, {}};
  static constexpr Meaning kNothing{Kind::FirstByteFault, 0, {}};

  ReadyToUnicode converter_;
  OwnedObject<PageCharacters> characters_;
  Meaning singles_[256];
  mutable MeaningMemo memo_;
  mutable bool isCutOff_ = false;  ///< the last walk ended within a character
  bool isDouble_ = false;
  bool wasDouble_ = false;  ///< at the beginning of the last reading
};

/// False when not every byte is one unit, or none.
bool takeSingleBytes(const Meaning (&meanings)[256], SingleBytes& bytes) {
  for (std::size_t i = 0; i < 256; ++i) {
    const Meaning& meaning = meanings[i];
    const bool isFault = meaning.kind == Kind::Fault || meaning.kind == Kind::FirstByteFault;
    if (!isFault && (meaning.kind != Kind::Units || meaning.count != 1)) return false;
    bytes.units[i] = meaning.units[0];
    bytes.isUnmapped[i] = isFault;
  }
  bytes.hasUnmapped = std::ranges::find(bytes.isUnmapped, true) != std::end(bytes.isUnmapped);
  return true;
}

}  // namespace

Reader* makePageReader(const VelClCCSID& source) {
  const ReadyToUnicode converter(source);
  if (!converter.isSupported()) return nullptr;
  const OwnedObject<PageCharacters> characters(makePageCharacters(converter));
  Meaning meanings[256];
  for (unsigned int byte = 0; byte < 256; ++byte)
    meanings[byte] = characters->single(static_cast<unsigned char>(byte));
  const bool hasShifts = characters->hasShifts();
  SingleBytes bytes;
  if (!hasShifts && takeSingleBytes(meanings, bytes)) return create<SingleByteReader>(source, bytes);
  return create<MixedReader>(source, meanings);
}

}  // namespace vel::codepage
