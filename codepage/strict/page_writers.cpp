// Strict writers of code pages. A character is written only if its bytes round-trip: decoded again, they are
// the same character. A character that would become a best fit, a substitute or a truncated unit does not,
// and counts as unmappable.
//
// Encoder finds out once whether a character round-trips, and EncodingCache keeps the result. The single-byte
// writer then looks up bytes in the cache. The mixed writer uses the cache only to find how far the text
// round-trips, and passes that prefix as a whole to ICU or the system, because the bytes of a character
// depend on the shift state.
#include "codepage/strict/page_writers.h"

#include <algorithm>
#include <iterator>

#include "codepage/conversion.h"
#include "codepage/strict/checked_converter.h"
#include "codepage/strict/page_decoder.h"
#include "codepage/tables/conversion_tables.h"

namespace vel::codepage {

namespace {

using Route = VelClConverterABase::VelEnRoute;

constexpr char32_t kLastPrivate = 0x10FFFD;
constexpr unsigned char kAsciiSubstitute = 0x1A;

/// A character in the target's code page: its bytes, or those of its substitute if it does not round-trip.
struct Encoded {
  unsigned char bytes[16];
  std::size_t size;
  bool roundTrips;
};

/// Encodes single characters, each as a separate text, and decodes them again.
class Encoder {
 public:
  explicit Encoder(const VelClCCSID& target)
      : converter_(target), codec_(converter_), table_(velGetSBCStoUCS2Table(target.getCCSID())) {}

  const VelClUnicode2CodePageConverter& converter() const { return converter_; }
  bool isIcu() const { return converter_.getRoute() == Route::ICU; }
  bool isSingleByte() const;

  Encoded encode(char32_t character) const {
    char16_t units[2];
    const std::size_t count = encodeUtf16(character, units);
    Encoded encoded{};
    if (isIcu()) {
      char* const bytes = reinterpret_cast<char*>(encoded.bytes);
      encoded.size = codec_.encode(units, count, bytes, sizeof encoded.bytes);
      encoded.roundTrips = roundTripsByIcu(encoded, units, count) &&
                           (character != kReplacementCharacter || !isSubstitute(encoded));
      return encoded;
    }
    encoded.size = converter_.convertBytes(reinterpret_cast<char*>(encoded.bytes), sizeof encoded.bytes,
                                           reinterpret_cast<const char*>(units), count * kUnitSize);
    encoded.roundTrips = roundTripsByTable(encoded, character);
    // ISO8859-1 truncates units to their low byte, which is an unrelated character. The page does not define
    // a substitute, so that of ASCII is used.
    if (converter_.getRoute() == Route::ALGORITHM && !encoded.roundTrips)
      encoded = {{kAsciiSubstitute}, 1, false};
    return encoded;
  }

 private:
  bool roundTripsByIcu(const Encoded& encoded, const char16_t (&units)[2], std::size_t count) const {
    char16_t back[8];
    const auto* const bytes = reinterpret_cast<const char*>(encoded.bytes);
    const std::size_t length = codec_.decode(bytes, encoded.size, back, std::size(back));
    return length == count && std::equal(back, back + length, units);
  }

  /// Returns whether the bytes of U+FFFD are the page's substitute, which decodes to U+FFFD and so seems to
  /// round-trip. They are if U+10FFFD, a private-use character that is unmappable in nearly all pages, has
  /// the same bytes.
  bool isSubstitute(const Encoded& encoded) const {
    const Encoded other = encode(kLastPrivate);
    return other.size == encoded.size && std::memcmp(other.bytes, encoded.bytes, other.size) == 0;
  }

  /// Compares with the table of the other direction. Without a table the system converts, and only the "?"
  /// that it writes shows that a character is unmappable.
  bool roundTripsByTable(const Encoded& encoded, char32_t character) const {
    if (encoded.size == 0) return false;
    if (table_ == nullptr) return encoded.bytes[0] != '?' || character == '?';
    return encoded.size == 1 && toHostOrder(table_[encoded.bytes[0]]) == character;
  }

  CheckedFromUnicode converter_;
  IcuPageCodec codec_;  ///< used only if isIcu()
  const std::uint16_t* table_;
};

bool Encoder::isSingleByte() const {
  if (!isIcu()) return converter_.getRoute() != Route::SYSTEM || table_ != nullptr;
  for (unsigned int byte = 0; byte < 256; ++byte) {
    const char in = static_cast<char>(byte);
    char16_t out[8];
    const std::size_t count = codec_.decodePiece(&in, 1, out, std::size(out), false).units;
    // Resets the converter, which may hold an incomplete character.
    codec_.decode(&in, 0, out, std::size(out));
    if (count == 0) return false;
  }
  return true;
}

/// Caches whether characters round-trip, and their bytes in single-byte targets. A two-level table: 0x1100
/// blocks of 256 entries cover all of Unicode, and a block is allocated when the first of its characters is
/// used. Until then its slot refers to a shared block of zeros, so a look-up need not test for a missing
/// block.
class EncodingCache {
 public:
  using Entry = std::uint16_t;
  // The low byte of an entry is the character's byte, or its substitute's, in a single-byte target.
  static constexpr Entry kRoundTrips = 0x100;
  static constexpr Entry kUnmappable = 0x200;

  EncodingCache() : slots_(kBlocks) {}
  EncodingCache(const EncodingCache&) = delete;
  EncodingCache& operator=(const EncodingCache&) = delete;
  ~EncodingCache() {
    for (const Slot& slot : slots_)
      if (slot.block != &kUnknown) destroy(const_cast<Block*>(slot.block));
  }

  /// Returns the entry of a character, or 0 if it is not cached.
  Entry at(char32_t character) const { return slots_[character >> 8].block->entries[character & 0xFF]; }
  /// Writes the cached bytes up to the first unit not known to round-trip; returns the number written.
  /// Surrogates are never known: their entries stay 0.
  std::size_t encodeCached(const char16_t* __restrict units, std::size_t count, char* __restrict to) const {
    constexpr std::size_t kSome = 4;
    std::size_t i = 0;
    while (i + kSome <= count && encodeFour(units + i, to + i)) i += kSome;
    for (; i < count; ++i) {
      const Entry entry = at(units[i]);
      if ((entry & kRoundTrips) == 0) break;
      to[i] = static_cast<char>(entry);
    }
    return i;
  }
  void set(char32_t character, Entry entry) {
    const Block*& block = slots_[character >> 8].block;
    if (block == &kUnknown) block = create<Block>();
    const_cast<Block*>(block)->entries[character & 0xFF] = entry;
  }

 private:
  static constexpr std::size_t kBlocks = 0x1100;
  struct Block {
    Entry entries[256] = {};
  };
  static const Block kUnknown;
  struct Slot {
    const Block* block = &kUnknown;
  };

  /// Writes the bytes of four units; returns false, with nothing written, if one of them is not known to
  /// round-trip. In most text for single-byte targets all four are below U+0100, the first block; one test on
  /// a word of four units finds out.
  bool encodeFour(const char16_t* __restrict units, char* __restrict to) const {
    constexpr std::uint64_t kHighBytes = 0xFF00FF00FF00FF00;
    std::uint64_t word;
    std::memcpy(&word, units, sizeof word);
    const Entry* const first = slots_[0].block->entries;
    const bool isFirst = (word & kHighBytes) == 0;
    const Entry a = isFirst ? first[word & 0xFF] : at(units[0]);
    const Entry b = isFirst ? first[word >> 16 & 0xFF] : at(units[1]);
    const Entry c = isFirst ? first[word >> 32 & 0xFF] : at(units[2]);
    const Entry d = isFirst ? first[word >> 48] : at(units[3]);
    if ((a & b & c & d & kRoundTrips) == 0) return false;
    const std::uint32_t bytes = (a & 0xFFU) | (b & 0xFFU) << 8 | (c & 0xFFU) << 16 | (d & 0xFFU) << 24;
    std::memcpy(to, &bytes, sizeof bytes);
    return true;
  }

  Vector<Slot> slots_;
};

constinit const EncodingCache::Block EncodingCache::kUnknown{};

/// The base of both writers: the encoder and the cache.
class PageWriter : public Writer {
 public:
  explicit PageWriter(const VelClCCSID& target) : encoder_(target) {}

 protected:
  const Encoder& encoder() const { return encoder_; }
  const EncodingCache& cache() const { return cache_; }

  EncodingCache::Entry entryOf(char32_t character) {
    const EncodingCache::Entry known = cache_.at(character);
    if (known != 0) return known;
    Encoded encoded = encoder_.encode(character);
    const EncodingCache::Entry flag =
        encoded.roundTrips ? EncodingCache::kRoundTrips : EncodingCache::kUnmappable;
    // For some unmappable characters, such as invisible ones, ICU writes nothing. For U+FFFD it writes the
    // substitute.
    if (encoded.size == 0) encoded = encoder_.encode(kReplacementCharacter);
    const auto entry = static_cast<EncodingCache::Entry>(flag | encoded.bytes[0]);
    cache_.set(character, entry);
    return entry;
  }

 private:
  Encoder encoder_;
  EncodingCache cache_;
};

class SingleByteWriter : public PageWriter {
 public:
  using PageWriter::PageWriter;

  std::size_t write(const char16_t* units, std::size_t count, Output& output) override {
    char* to = output.reserve(count);
    std::size_t i = 0;
    while (i < count) {
      const std::size_t known = cache().encodeCached(units + i, count - i, to);
      i += known;
      to += known;
      output.commit(known);
      // This character is not cached, not in the first plane, or unmappable, so it is encoded singly.
      if (i == count) break;
      const Character character = decodeFirst(units + i);
      const EncodingCache::Entry entry = entryOf(character.value);
      if ((entry & EncodingCache::kRoundTrips) == 0) break;
      *to++ = static_cast<char>(entry);
      output.commit(1);
      i += character.units;
    }
    return i;
  }

  void writeOrSubstitute(char32_t character, Output& output) override {
    *output.reserve(1) = static_cast<char>(entryOf(character));
    output.commit(1);
  }
};

/// Writes to targets with lead bytes or shifts. ICU keeps the shift state from one call to the next.
class MixedWriter : public PageWriter {
 public:
  explicit MixedWriter(const VelClCCSID& target)
      : PageWriter(target), converter_(target), codec_(converter_) {}

  std::size_t write(const char16_t* units, std::size_t count, Output& output) override {
    std::size_t i = 0;
    while (i < count) {
      const Character character = decodeFirst(units + i);
      if ((entryOf(character.value) & EncodingCache::kRoundTrips) == 0) break;
      i += character.units;
    }
    convert(units, i, false, output);
    return i;
  }

  void writeOrSubstitute(char32_t character, Output& output) override {
    const bool isDropped = encoder().encode(character).size == 0;
    char16_t units[2];
    convert(units, encodeUtf16(isDropped ? kReplacementCharacter : character, units), false, output);
  }

  void finish(Output& output) override { convert(nullptr, 0, true, output); }

 private:
  void convert(const char16_t* units, std::size_t count, bool flush, Output& output) const {
    if (encoder().isIcu()) return convertByIcu(units, count, flush, output);
    // The system's conversion fails for an empty text, and its code pages do not use shifts.
    if (count == 0) return;
    const std::size_t room = count * kMaxSequence;
    const char* const source = reinterpret_cast<const char*>(units);
    output.commit(converter_.convertBytes(output.reserve(room), room, source, count * kUnitSize));
  }

  void convertByIcu(const char16_t* units, std::size_t count, bool flush, Output& output) const {
    constexpr std::size_t kMinRoom = 256;
    constexpr char16_t kNone[1] = {};
    const char16_t* position = count != 0 ? units : kNone;
    const char16_t* const end = position + count;
    IcuPageCodec::EncodedPiece piece;
    do {
      char* const to = output.reserve(kMinRoom);
      piece = codec_.encodePiece(position, end, to, output.room(), flush);
      output.commit(piece.size);
    } while (piece.isFull);
  }

  CheckedFromUnicode converter_;  ///< separate from the encoder's, whose trials would change the shift state
  IcuPageCodec codec_;            ///< used only if the encoder is ICU's
};

}  // namespace

Writer* makePageWriter(const VelClCCSID& target) {
  const Encoder encoder(target);
  if (!encoder.converter().isSupported()) return nullptr;
  if (encoder.isSingleByte()) return create<SingleByteWriter>(target);
  return create<MixedWriter>(target);
}

}  // namespace vel::codepage
