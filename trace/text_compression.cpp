// The 6-bit code of trace texts, many characters at a time where none of them is escaped.
#include "trace/text_compression.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "trace/encode_block.h"

namespace vel::trace {

namespace {

/// The bytes of a coded block.
constexpr std::ptrdiff_t kBlockBytes = 12;
/// Characters that are decoded at once.
constexpr std::size_t kGroup = 8;

/// No further character is taken up once more bits than these are written.
constexpr std::size_t kLastStartBit = (kLongestCompressed - 1) * 8;
/// The last byte that a block can begin in.
constexpr std::ptrdiff_t kLastBlockStart = kLongestCompressed - 1 - kBlockBytes - 1;

/// Between a number and its bytes in memory, high byte first.
constexpr std::uint64_t highBitsFirst(std::uint64_t bits) {
  return std::endian::native == std::endian::little ? __builtin_bswap64(bits) : bits;
}

/// Collects bits, fewer than 8 of them pending between two calls. Every call stores 8 bytes.
class BitWriter {
 public:
  explicit BitWriter(unsigned char* out) : start_(out), out_(out) {}

  std::size_t bits() const { return bytes() * 8 + pending_; }
  /// Whether even the last character of a block would not be cut.
  bool hasRoomForBlock() const { return out_ <= start_ + kLastBlockStart; }

  /// The highest `count` bits of `value`, at most 56, the others being 0.
  void put(std::uint64_t value, std::size_t count) {
    bits_ |= value >> pending_;
    store(bits_, out_);
    pending_ += count;
    const std::size_t whole = pending_ / 8;
    out_ += whole;
    bits_ <<= 8 * whole;
    pending_ %= 8;
  }

  /// Codes whole blocks up to the first that has an escaped character or could be cut; returns where it
  /// stopped.
  const unsigned char* putBlocks(const unsigned char* next, const unsigned char* end) {
    // A block has whole bytes: the pending bits stay as many.
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

  /// The last `count` codes of a block, of which there is one at least.
  void putTail(const EncodedBlock& block, std::size_t count) {
    if (count > 8) put(block.first << (96 - 6 * count), 6 * count - 48);
    const std::size_t bits = std::min<std::size_t>(6 * count, 48);
    put(block.second << (48 - bits), bits);
  }

  void put(unsigned char character) {
    const std::uint64_t code = kCodes[character];
    if ((code & kEscapeMark) == 0)
      put(code << 58, 6);
    else
      put(std::uint64_t{kEscape} << 58 | std::uint64_t{character} << 50, 14);
  }

  std::size_t finish() {
    if (pending_ > 0) put(~std::uint64_t{0} << (56 + pending_), 8 - pending_);
    return bytes();
  }

 private:
  std::size_t bytes() const { return static_cast<std::size_t>(out_ - start_); }
  static void store(std::uint64_t bits, unsigned char* out) {
    const std::uint64_t ordered = highBitsFirst(bits);
    std::memcpy(out, &ordered, sizeof ordered);
  }

  unsigned char* start_;
  unsigned char* out_;
  std::uint64_t bits_ = 0;  ///< the pending ones on top, zeros below
  std::size_t pending_ = 0;
};

/// Two characters as they stand in memory, for two codes; 0 when one of these is the escape.
using CharacterPair = std::uint16_t;

consteval std::array<CharacterPair, 4096> makePairs() {
  std::array<CharacterPair, 4096> pairs{};
  for (std::size_t codes = 0; codes < pairs.size(); ++codes)
    if (codes >> 6 != kEscape && (codes & 63) != kEscape)
      pairs[codes] = static_cast<CharacterPair>(kAlphabet[codes >> 6] | kAlphabet[codes & 63] << 8);
  return pairs;
}

constexpr std::array<CharacterPair, 4096> kPairs = makePairs();

class BitReader {
 public:
  BitReader(const unsigned char* stored, std::size_t length) : stored_(stored), length_(length) {}

  bool has(std::size_t count) const { return position_ + count <= length_ * 8; }
  bool hasGroup() const { return has(6 * kGroup); }

  unsigned int read(std::size_t count) {
    const std::size_t byte = position_ / 8;
    const unsigned int window = stored_[byte] * 256U + (byte + 1 < length_ ? stored_[byte + 1] : 0U);
    const unsigned int value = window >> (16 - position_ % 8 - count) & ((1U << count) - 1);
    position_ += count;
    return value;
  }

  /// Writes a group of characters; false, with the position as it was, when one of them is escaped.
  bool readGroup(char* out) {
    const std::uint64_t bits = highBitsFirst(nextWord()) << position_ % 8;
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
  /// The next 8 bytes, of which 0 stands for the last two where the text has only 6 or 7 more.
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
    // What is left, or a block that is not simple.
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
  // An escaped last character can reach one byte too far; that byte is cut.
  return std::min(writer.finish(), kLongestCompressed);
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
