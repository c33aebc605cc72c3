// The 6-bit code of trace texts, eight characters at a time where none of them is escaped.
#include "trace/text_compression.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace vel::trace {

namespace {

constexpr char kAlphabet[] = " ,&*:_~()<>ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::uint8_t kEscape = 63;
/// Marks the escape in the table, so that one test finds it among many codes.
constexpr std::uint8_t kEscapeMark = 0x80;
static_assert(sizeof kAlphabet - 1 == kEscape);

constexpr std::array<std::uint8_t, 256> makeCodes() {
  std::array<std::uint8_t, 256> codes{};
  codes.fill(kEscapeMark | kEscape);
  for (std::uint8_t code = 0; code < kEscape; ++code)
    codes[static_cast<unsigned char>(kAlphabet[code])] = code;
  // This byte reads back as a blank. Keep.
  codes[255] = 0;
  return codes;
}

constexpr std::array<std::uint8_t, 256> kCodes = makeCodes();

/// Characters that are coded at once.
constexpr std::size_t kGroup = 8;
constexpr int kGroupBytes = 6;

/// No further character is taken up once more bits than these are written.
constexpr std::size_t kLastStart = (kLongestCompressed - 1) * 8;

/// Between a number and its bytes in memory, high byte first.
constexpr std::uint64_t highBitsFirst(std::uint64_t bits) {
  return std::endian::native == std::endian::little ? __builtin_bswap64(bits) : bits;
}

/// The codes of eight characters in the highest bits.
struct Group {
  std::uint64_t codes;
  bool escaped;  ///< one of them has no code
};

Group codeGroup(const unsigned char* characters) {
  const std::uint64_t code[kGroup] = {kCodes[characters[0]], kCodes[characters[1]], kCodes[characters[2]],
                                      kCodes[characters[3]], kCodes[characters[4]], kCodes[characters[5]],
                                      kCodes[characters[6]], kCodes[characters[7]]};
  const std::uint64_t marks = code[0] | code[1] | code[2] | code[3] | code[4] | code[5] | code[6] | code[7];
  const std::uint64_t codes = code[0] << 58 | code[1] << 52 | code[2] << 46 | code[3] << 40 | code[4] << 34 |
                              code[5] << 28 | code[6] << 22 | code[7] << 16;
  return {codes, (marks & kEscapeMark) != 0};
}

/// Collects bits, at most 8 of them pending between two calls.
class BitWriter {
 public:
  explicit BitWriter(unsigned char* out) : start_(out), out_(out) {}

  std::size_t bits() const { return bytes() * 8 + static_cast<std::size_t>(pending_); }

  /// Codes whole groups until one has an escaped character or could be cut; returns where it stopped.
  const unsigned char* putGroups(const unsigned char* next, const unsigned char* end) {
    std::uint64_t bits = bits_;
    unsigned char* out = out_;
    const unsigned char* const lastOut = start_ + kLongestCompressed - sizeof bits;
    for (; static_cast<std::size_t>(end - next) >= kGroup && out <= lastOut; next += kGroup) {
      const Group group = codeGroup(next);
      if (group.escaped) break;
      const std::uint64_t stored = highBitsFirst(bits | group.codes >> pending_);
      std::memcpy(out, &stored, sizeof stored);
      // The pending bits stay as many: a group has whole bytes.
      bits = group.codes << (8 * kGroupBytes - pending_);
      out += kGroupBytes;
    }
    bits_ = bits;
    out_ = out;
    return next;
  }

  void put(std::uint64_t value, int count) {
    bits_ |= value << (64 - pending_ - count);
    for (pending_ += count; pending_ >= 8; pending_ -= 8) store();
  }

  std::size_t finish() {
    if (pending_ > 0) {
      bits_ |= ~std::uint64_t{0} >> pending_;
      store();
    }
    return bytes();
  }

 private:
  std::size_t bytes() const { return static_cast<std::size_t>(out_ - start_); }
  /// An escaped last character can reach one byte too far; that byte is cut.
  void store() {
    if (bytes() < kLongestCompressed) *out_++ = static_cast<unsigned char>(bits_ >> 56);
    bits_ <<= 8;
  }

  unsigned char* start_;
  unsigned char* out_;
  std::uint64_t bits_ = 0;  ///< the pending ones on top, zeros below
  int pending_ = 0;
};

class BitReader {
 public:
  BitReader(const unsigned char* stored, std::size_t length) : stored_(stored), length_(length) {}

  bool has(std::size_t count) const { return position_ + count <= length_ * 8; }
  bool hasGroup() const { return position_ / 8 + sizeof(std::uint64_t) <= length_; }

  unsigned int take(std::size_t count) {
    const std::size_t byte = position_ / 8;
    const unsigned int window = stored_[byte] * 256U + (byte + 1 < length_ ? stored_[byte + 1] : 0U);
    const unsigned int value = window >> (16 - position_ % 8 - count) & ((1U << count) - 1);
    position_ += count;
    return value;
  }

  /// Writes a group of characters; false, with the position as it was, when one of them is escaped.
  bool takeGroup(char* out) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, stored_ + position_ / 8, sizeof bits);
    bits = highBitsFirst(bits) << position_ % 8;
    bool escaped = false;
    for (std::size_t i = 0; i < kGroup; ++i, bits <<= 6) {
      const auto code = static_cast<std::size_t>(bits >> 58);
      escaped = escaped || code == kEscape;
      out[i] = kAlphabet[code];
    }
    if (!escaped) position_ += 6 * kGroup;
    return !escaped;
  }

 private:
  const unsigned char* stored_;
  std::size_t length_;
  std::size_t position_ = 0;  ///< in bits
};

void putCharacter(BitWriter& writer, unsigned char c) {
  const std::uint8_t code = kCodes[c];
  if ((code & kEscapeMark) == 0)
    writer.put(code, 6);
  else
    writer.put(std::uint64_t{kEscape} << 8 | c, 14);
}

}  // namespace

std::size_t compress(const char* text, std::size_t length, unsigned char* out) noexcept {
  BitWriter writer(out);
  const auto* next = reinterpret_cast<const unsigned char*>(text);
  const unsigned char* const end = next + length;
  while (next != end && writer.bits() <= kLastStart) {
    next = writer.putGroups(next, end);
    // The group with an escaped character, or the rest.
    for (std::size_t i = 0; i < kGroup && next != end && writer.bits() <= kLastStart; ++i)
      putCharacter(writer, *next++);
  }
  return writer.finish();
}

std::size_t decompress(const unsigned char* stored, std::size_t length, char* out) noexcept {
  const char* const start = out;
  BitReader reader(stored, length);
  while (reader.has(6)) {
    if (reader.hasGroup() && reader.takeGroup(out)) {
      out += kGroup;
      continue;
    }
    const unsigned int code = reader.take(6);
    if (code == kEscape && !reader.has(8)) break;
    *out++ = code == kEscape ? static_cast<char>(reader.take(8)) : kAlphabet[code];
  }
  *out = '\0';
  return static_cast<std::size_t>(out - start);
}

}  // namespace vel::trace
