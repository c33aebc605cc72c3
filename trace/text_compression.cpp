// Compresses and decompresses trace texts, many characters at a time where none of them is escaped. Blocks of
// characters are turned into codes by encode_block.h.
//
// BitWriter holds fewer than 8 pending bits at the top of a word. To append bits it ors them in below, stores
// the whole word, and advances by the complete bytes only; the next store overwrites the rest:
//
//   bits_   ppppp vvvvvvvvvvvvvv 000...     p pending, v appended bits
//           |byte 0 |byte 1 |byte 2 |...    out_ advances by 2, 3 bits are pending
//
// A block has 96 bits, 12 whole bytes, so blocks leave the number of pending bits as it is and all blocks are
// shifted by the same amount.
//
// BitReader decodes 8 characters from 48 bits with four look-ups in a table that maps 12 bits to a pair of
// characters. A pair with an escape is 0 there; the reader then decodes a single code and tries again.
#include "trace/text_compression.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "trace/encode_block.h"

namespace vel::trace {

namespace {

/// The size of an encoded block in bytes.
constexpr std::ptrdiff_t kBlockBytes = 12;
/// The number of characters that are decoded together.
constexpr std::size_t kGroup = 8;

/// The last bit at which a character may start. A 6-bit code then fits into kMaxCompressedSize bytes; an
/// escaped character may not.
constexpr std::size_t kLastStartBit = (kMaxCompressedSize - 1) * 8;
/// The last byte in which a block may start, so that with up to 7 bits pending its last character still
/// starts at kLastStartBit or before.
constexpr std::ptrdiff_t kLastBlockStart = kMaxCompressedSize - 1 - kBlockBytes - 1;

/// Converts between host and big-endian byte order.
constexpr std::uint64_t bigEndian(std::uint64_t bits) {
  return std::endian::native == std::endian::little ? __builtin_bswap64(bits) : bits;
}

/// Appends bits to bytes in memory, high bits first. Every call stores 8 bytes, of
/// which only those that are complete count.
class BitWriter {
 public:
  explicit BitWriter(unsigned char* out) : start_(out), out_(out) {}

  std::size_t bits() const { return bytes() * 8 + pending_; }
  /// Whether a block fits without any of its characters being dropped.
  bool hasRoomForBlock() const { return out_ <= start_ + kLastBlockStart; }

  /// Appends the highest `count` bits of `value`, at most 56; its other bits must be 0.
  void put(std::uint64_t value, std::size_t count) {
    bits_ |= value >> pending_;
    store(bits_, out_);
    pending_ += count;
    const std::size_t whole = pending_ / 8;
    out_ += whole;
    bits_ <<= 8 * whole;
    pending_ %= 8;
  }

  /// Appends whole blocks up to the first one that encodeBlock() refuses or
  /// that may not fit; returns where it stopped.
  const unsigned char* putBlocks(const unsigned char* next, const unsigned char* end) {
    // Of each half of a block, 48 bits, the last `pending_` bits wait for the next store.
    const std::size_t right = pending_;
    const std::size_t left = 48 - pending_;
    std::uint64_t bits = bits_;
    unsigned char* out = out_;
    EncodedBlock block;
    while (end - next >= std::ptrdiff_t{kBlockLength} && out <= start_ + kLastBlockStart &&
           encodeBlock(loadBlock(next), kAllCharacters, block)) {
      store(bits | block.first >> right, out);
      bits = block.first << left;
      store(bits | block.second >> right, out + kBlockBytes / 2);
      bits = block.second << left;
      next += kBlockLength;
      out += kBlockBytes;
    }
    bits_ = bits;
    out_ = out;
    return next;
  }

  /// Appends the last `count` codes of a block, at least one.
  void putTail(const EncodedBlock& block, std::size_t count) {
    if (count > 8) put(block.first << (96 - 6 * count), 6 * count - 48);
    const std::size_t bits = std::min<std::size_t>(6 * count, 48);
    put(block.second << (48 - bits), bits);
  }

  /// Appends one character, escaped if it is not in the alphabet.
  void put(unsigned char character) {
    const std::uint64_t code = kCodes[character];
    if ((code & kEscapeMark) == 0)
      put(code << 58, 6);
    else
      put(std::uint64_t{kEscape} << 58 | std::uint64_t{character} << 50, 14);
  }

  /// Fills the last byte and returns the size in bytes. Six or seven zeros would decode as one more blank;
  /// ones decode as an escape without a character, which ends the text.
  std::size_t finish() {
    if (pending_ > 0) put(~std::uint64_t{0} << (56 + pending_), 8 - pending_);
    return bytes();
  }

 private:
  std::size_t bytes() const { return static_cast<std::size_t>(out_ - start_); }
  static void store(std::uint64_t bits, unsigned char* out) {
    const std::uint64_t ordered = bigEndian(bits);
    std::memcpy(out, &ordered, sizeof ordered);
  }

  unsigned char* start_;
  unsigned char* out_;
  std::uint64_t bits_ = 0;  ///< the pending bits on top, zeros below
  std::size_t pending_ = 0;
};

/// The characters of two codes, in memory order; 0 if one of the codes is the escape.
using CharacterPair = std::uint16_t;

consteval std::array<CharacterPair, 4096> makePairs() {
  std::array<CharacterPair, 4096> pairs{};
  for (std::size_t codes = 0; codes < pairs.size(); ++codes)
    if (codes >> 6 != kEscape && (codes & 63) != kEscape)
      pairs[codes] = static_cast<CharacterPair>(kAlphabet[codes >> 6] | kAlphabet[codes & 63] << 8);
  return pairs;
}

constexpr std::array<CharacterPair, 4096> kPairs = makePairs();

/// Reads bits from a compressed text. Callers check has() or hasGroup() before they read.
class BitReader {
 public:
  BitReader(const unsigned char* stored, std::size_t length) : stored_(stored), length_(length) {}

  bool has(std::size_t count) const { return position_ + count <= length_ * 8; }
  bool hasGroup() const { return has(6 * kGroup); }

  /// Reads the next `count` bits, at most 8.
  unsigned int read(std::size_t count) {
    const std::size_t byte = position_ / 8;
    const unsigned int window = stored_[byte] * 256U + (byte + 1 < length_ ? stored_[byte + 1] : 0U);
    const unsigned int value = window >> (16 - position_ % 8 - count) & ((1U << count) - 1);
    position_ += count;
    return value;
  }

  /// Decodes the next kGroup characters. Returns false, and neither writes
  /// nor moves on, if one of them is escaped.
  bool readGroup(char* out) {
    const std::uint64_t bits = bigEndian(nextWord()) << position_ % 8;
    const CharacterPair first = kPairs[bits >> 52];
    const CharacterPair second = kPairs[bits >> 40 & 0xFFF];
    const CharacterPair third = kPairs[bits >> 28 & 0xFFF];
    const CharacterPair fourth = kPairs[bits >> 16 & 0xFFF];
    if (first == 0 || second == 0 || third == 0 || fourth == 0) return false;
    std::memcpy(out, &first, 2);
    std::memcpy(out + 2, &second, 2);
    std::memcpy(out + 4, &third, 2);
    std::memcpy(out + 6, &fourth, 2);
    position_ += 6 * kGroup;
    return true;
  }

 private:
  /// Loads the next 8 bytes. Near the end of the text only 6 or 7 are left, as many as a group needs from
  /// this bit on; the missing ones are 0.
  std::uint64_t nextWord() const {
    const unsigned char* const next = stored_ + position_ / 8;
    const std::size_t left = length_ - position_ / 8;
    std::uint64_t word = 0;
    if (left >= sizeof word) {
      std::memcpy(&word, next, sizeof word);
      return word;
    }
    unsigned char bytes[sizeof word] = {};
    std::memcpy(bytes, next, 6);
    if (left == 7) bytes[6] = next[6];
    std::memcpy(&word, bytes, sizeof word);
    return word;
  }

  const unsigned char* stored_;
  std::size_t length_;
  std::size_t position_ = 0;  ///< in bits
};

}  // namespace

std::size_t compress(const char* text, std::size_t length, unsigned char* out) noexcept {
  BitWriter writer(out);
  const auto* next = reinterpret_cast<const unsigned char*>(text);
  const unsigned char* const end = next + length;
  while (true) {
    next = writer.putBlocks(next, end);
    if (next == end || writer.bits() > kLastStartBit) break;
    // Fewer characters than a block are left, or encodeBlock() refuses the next block, or it may not fit.
    const auto count = std::min(static_cast<std::size_t>(end - next), kBlockLength);
    EncodedBlock block;
    if (count < kBlockLength && writer.hasRoomForBlock() &&
        encodeBlock(loadTail(next + count, count), kAllCharacters & kAllCharacters << (kBlockLength - count),
                    block))
      writer.putTail(block, count);
    else
      for (std::size_t i = 0; i < count && writer.bits() <= kLastStartBit; ++i) writer.put(next[i]);
    next += count;
  }
  // The last character may be an escaped one that ends in a 256th byte. Without that byte it is incomplete,
  // and decompress() ignores it.
  return std::min(writer.finish(), kMaxCompressedSize);
}

std::size_t decompress(const unsigned char* stored, std::size_t length, char* out) noexcept {
  const char* const start = out;
  BitReader reader(stored, length);
  while (reader.has(6)) {
    if (reader.hasGroup() && reader.readGroup(out)) {
      out += kGroup;
      continue;
    }
    const unsigned int code = reader.read(6);
    if (code == kEscape && !reader.has(8)) break;
    *out++ = code == kEscape ? static_cast<char>(reader.read(8)) : kAlphabet[code];
  }
  *out = '\0';
  return static_cast<std::size_t>(out - start);
}

}  // namespace vel::trace
