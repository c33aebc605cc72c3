// Strict readers of code pages: those of single bytes, and all others, with lead bytes or shifts.
#include "codepage/strict/page_readers.h"

#include <algorithm>
#include <iterator>

#include "codepage/conversion.h"
#include "codepage/strict/checked_converter.h"
#include "codepage/strict/page_decoder.h"
#include "foundation/allocator.h"

namespace vel::codepage {

namespace {

using Route = VelClConverterABase::VelEnRoute;
using Kind = DecodeResult::Kind;

struct SingleByteMap {
  char16_t units[256];
  bool isUnmapped[256];
  bool hasUnmapped;
};

class SingleByteReader : public Reader {
 public:
  SingleByteReader(const VelClCCSID& source, const SingleByteMap& bytes)
      : converter_(source), bytes_(bytes) {}

  ReadResult read(const char* source, std::size_t size, bool, char16_t* units,
                  std::size_t capacity) override {
    ReadResult result;
    const std::size_t room = std::min(size, capacity);
    result.consumed = result.units = bytes_.hasUnmapped ? mappedPrefix(source, room) : room;
    convert(source, result.units, units);
    if (result.consumed == room) return result;
    result.fault = Fault::INVALID_SEQUENCE;
    result.faultSize = 1;
    return result;
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

  CheckedToUnicode converter_;
  SingleByteMap bytes_;
};

/// Keeps the results of the sequences that a text has, each in one place that its bytes give.
class DecodeCache {
 public:
  DecodeCache() : entries_(kCount) {}

  /// Unknown at first; the caller puts in what it finds out.
  DecodeResult& at(const unsigned char* bytes, std::size_t size, bool isShifted) {
    std::uint32_t key = 0;
    for (std::size_t i = 0; i < size; ++i) key = key << 8 | bytes[i];
    const auto length = static_cast<std::uint8_t>(isShifted ? 0x80 + size : size);
    Entry& entry = entries_[(key + length) * 2654435761U >> (32 - kBits)];
    if (entry.key != key || entry.length != length) entry = {key, length, {}};
    return entry.decoded;
  }

 private:
  static constexpr unsigned int kBits = 14;
  static constexpr std::size_t kCount = std::size_t{1} << kBits;

  struct Entry {
    std::uint32_t key = 0;
    std::uint8_t length = 0;
    DecodeResult decoded;
  };

  Vector<Entry> entries_;
};

class MixedReader : public Reader {
 public:
  MixedReader(const VelClCCSID& source, const DecodeResult (&singles)[256])
      : converter_(source), decoder_(makePageDecoder(converter_)) {
    std::ranges::copy(singles, singles_);
  }

  ReadResult read(const char* source, std::size_t size, bool isLast, char16_t* units,
                  std::size_t capacity) override {
    wasDouble_ = isDouble_;
    ReadResult result;
    Text text{reinterpret_cast<const unsigned char*>(source), size};
    if (!walk(isDouble_, text, result, units, capacity)) return result;
    if (isLast && result.consumed < size && result.fault == Fault::NONE && endsTruncated_) {
      result.fault = Fault::INCOMPLETE;
      result.faultSize = size - result.consumed;
      isDouble_ = false;
    } else if (isLast && result.consumed == size && isDouble_) {
      result.fault = Fault::INCOMPLETE;
      isDouble_ = false;
    }
    return result;
  }

  std::size_t sizeBefore(const char* source, std::size_t size, std::size_t unit) const override {
    bool isDouble = wasDouble_;
    ReadResult result;
    walk(isDouble, {reinterpret_cast<const unsigned char*>(source), size}, result, nullptr, unit);
    return result.consumed;
  }

  void restart() override { isDouble_ = false; }

 private:
  struct Text {
    const unsigned char* bytes;
    std::size_t size;
  };
  struct Step {
    const DecodeResult* decoded;
    std::size_t size;
  };

  /// Until the end, a fault, or the first character that does not fit; false for the last. Null units are
  /// only counted.
  bool walk(bool& isDouble, const Text& text, ReadResult& result, char16_t* units,
            std::size_t capacity) const {
    endsTruncated_ = false;
    while (result.consumed < text.size) {
      const Text rest{text.bytes + result.consumed, text.size - result.consumed};
      if (consumeShift(isDouble, *rest.bytes)) {
        ++result.consumed;
        continue;
      }
      const Step step = isDouble ? pairAt(rest) : characterAt(rest);
      if (step.decoded->kind == Kind::Prefix) {
        endsTruncated_ = true;
        return true;
      }
      if (step.decoded->kind != Kind::Units) {
        result.fault = Fault::INVALID_SEQUENCE;
        result.faultSize = step.size;
        return true;
      }
      if (result.units + step.decoded->count > capacity) return false;
      if (units != nullptr) std::copy_n(step.decoded->units, step.decoded->count, units + result.units);
      result.units += step.decoded->count;
      result.consumed += step.size;
    }
    return true;
  }

  /// Whether a byte is a shift and no part of a character.
  bool consumeShift(bool& isDouble, unsigned char byte) const {
    if (!decoder_->hasShifts() || (byte != kShiftOut && byte != kShiftIn)) return false;
    const bool toDouble = byte == kShiftOut;
    if (toDouble == isDouble && !decoder_->ignoresRedundantShifts()) return false;
    isDouble = toDouble;
    return true;
  }

  Step pairAt(const Text& text) const {
    if (text.size < 2) return {&kTruncated, 1};
    DecodeResult& decoded = cache_.at(text.bytes, 2, true);
    if (decoded.kind == Kind::Unknown) decoded = decoder_->decodePair(text.bytes[0], text.bytes[1]);
    return {&decoded, 2};
  }

  Step characterAt(const Text& text) const {
    const DecodeResult* decoded = &singles_[*text.bytes];
    std::size_t size = 1;
    for (; decoded->kind == Kind::Prefix && size < std::min(text.size, kMaxSequence); ++size) {
      DecodeResult& longer = cache_.at(text.bytes, size + 1, false);
      if (longer.kind == Kind::Unknown) longer = decoder_->decodeSequence(text.bytes, size + 1);
      decoded = &longer;
    }
    if (decoded->kind == Kind::Prefix && size == kMaxSequence) decoded = &kInvalid;
    return {decoded, decoded->kind == Kind::InvalidFirstByte ? 1 : size};
  }

  static constexpr DecodeResult kTruncated{Kind::Prefix, 0, {}};
  static constexpr DecodeResult kInvalid{Kind::InvalidFirstByte, 0, {}};

  CheckedToUnicode converter_;
  OwnedObject<PageDecoder> decoder_;
  DecodeResult singles_[256];
  mutable DecodeCache cache_;
  mutable bool endsTruncated_ = false;  ///< the last walk ended within a character
  bool isDouble_ = false;
  bool wasDouble_ = false;  ///< at the beginning of the last result
};

/// False when not every byte is one unit, or none.
bool fillSingleByteMap(const DecodeResult (&results)[256], SingleByteMap& bytes) {
  for (std::size_t i = 0; i < 256; ++i) {
    const DecodeResult& decoded = results[i];
    const bool isFault = decoded.kind == Kind::Invalid || decoded.kind == Kind::InvalidFirstByte;
    if (!isFault && (decoded.kind != Kind::Units || decoded.count != 1)) return false;
    bytes.units[i] = decoded.units[0];
    bytes.isUnmapped[i] = isFault;
  }
  bytes.hasUnmapped = std::ranges::find(bytes.isUnmapped, true) != std::end(bytes.isUnmapped);
  return true;
}

}  // namespace

Reader* makePageReader(const VelClCCSID& source) {
  const CheckedToUnicode converter(source);
  if (!converter.isSupported()) return nullptr;
  const OwnedObject<PageDecoder> decoder(makePageDecoder(converter));
  DecodeResult results[256];
  for (unsigned int byte = 0; byte < 256; ++byte)
    results[byte] = decoder->decodeSingle(static_cast<unsigned char>(byte));
  const bool hasShifts = decoder->hasShifts();
  SingleByteMap bytes;
  if (!hasShifts && fillSingleByteMap(results, bytes)) return create<SingleByteReader>(source, bytes);
  return create<MixedReader>(source, results);
}

}  // namespace vel::codepage
