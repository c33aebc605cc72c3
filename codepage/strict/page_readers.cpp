// Strict readers of code pages: one for pages of single bytes, and one for all others, with lead bytes or
// shifts.
//
// The single-byte reader decodes all 256 bytes when it is created. It then converts by the table kernel or,
// without a table, by looking up these results. The mixed reader decodes character by character. Decoding is
// slow with ICU, so results are cached: those of single bytes in an array, those of longer sequences in a
// direct-mapped cache.
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

/// A page of single bytes: their units, and which bytes are unmapped.
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
      // Uses the function for ASCII-based pages even for EBCDIC, because it does not fold next lines.
      Call call{converter_, reinterpret_cast<char*>(units), size * kUnitSize, &source, size};
      velConvertByTablesSBCS_ASCIItoUCS2(call);
      return;
    }
    for (std::size_t i = 0; i < size; ++i) units[i] = bytes_.units[static_cast<unsigned char>(source[i])];
  }

  CheckedToUnicode converter_;
  SingleByteMap bytes_;
};

/// A direct-mapped cache of decode results: a hash of the bytes gives the only entry that a sequence can be
/// in, and a sequence replaces the previous one in its entry. Texts use a few thousand characters, so nearly
/// all are found.
class DecodeCache {
 public:
  DecodeCache() : entries_(kCount) {}

  /// Returns the entry of a sequence. Its kind is Unknown if the sequence is not cached; the caller then
  /// stores the result. `isShifted` tells pairs in double-byte mode from the same bytes in single-byte mode.
  DecodeResult& at(const unsigned char* bytes, std::size_t size, bool isShifted) {
    std::uint32_t key = 0;
    for (std::size_t i = 0; i < size; ++i) key = key << 8 | bytes[i];
    const auto tag = static_cast<std::uint8_t>(isShifted ? kShiftedTag + size : size);
    // Multiplicative hashing by 2^32 divided by the golden ratio (Knuth, The Art of Computer
    // Programming, 6.4): the top bits depend on all bits of the key.
    Entry& entry = entries_[(key + tag) * 2654435761U >> (32 - kBits)];
    if (entry.key != key || entry.tag != tag) entry = {key, tag, {}};
    return entry.decoded;
  }

 private:
  static constexpr unsigned int kBits = 14;
  static constexpr std::size_t kCount = std::size_t{1} << kBits;
  static constexpr std::size_t kShiftedTag = 0x80;

  struct Entry {
    std::uint32_t key = 0;
    std::uint8_t tag = 0;  ///< the size of the sequence, plus kShiftedTag in double-byte mode
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
      // A text that ends in double-byte mode is reported as a fault of size 0.
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

  /// Decodes up to the end, a fault or a truncated character, and returns true; returns false at the first
  /// character that does not fit into `units`. Counts the units without writing them if `units` is null.
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

  /// Changes the mode and returns true if the byte is a shift; returns false if it belongs to a character.
  bool consumeShift(bool& isDouble, unsigned char byte) const {
    if (!decoder_->hasShifts() || (byte != kShiftOut && byte != kShiftIn)) return false;
    const bool toDouble = byte == kShiftOut;
    if (toDouble == isDouble && !decoder_->ignoresRedundantShifts()) return false;
    isDouble = toDouble;
    return true;
  }

  /// Decodes the pair at the start of text in double-byte mode.
  Step pairAt(const Text& text) const {
    if (text.size < 2) return {&kTruncated, 1};
    DecodeResult& decoded = cache_.at(text.bytes, 2, true);
    if (decoded.kind == Kind::Unknown) decoded = decoder_->decodePair(text.bytes[0], text.bytes[1]);
    return {&decoded, 2};
  }

  /// Decodes the character at the start of text in single-byte mode, byte by byte as long as they are a
  /// prefix.
  Step characterAt(const Text& text) const {
    const DecodeResult* decoded = &singles_[*text.bytes];
    std::size_t size = 1;
    for (; decoded->kind == Kind::Prefix && size < std::min(text.size, kMaxSequence); ++size) {
      DecodeResult& longer = cache_.at(text.bytes, size + 1, false);
      if (longer.kind == Kind::Unknown) longer = decoder_->decodeSequence(text.bytes, size + 1);
      decoded = &longer;
    }
    // A prefix of full length can never become a character. Reported as a prefix, it would make the reader
    // wait for more bytes endlessly.
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
  bool wasDouble_ = false;  ///< the mode at the start of the last read(), for sizeBefore()
};

/// Returns false if the page is not one of single bytes: a byte is a prefix, or several units.
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
