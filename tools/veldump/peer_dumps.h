// Decodes lines of the dumps that other programs write: xxd, and hexdump -C.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vel::veldump {

/// The bytes of a line of any dump.
struct DumpLine {
  static constexpr std::size_t kMaxBytes = 256;

  std::uint64_t address = 0;
  std::size_t capacity = 0;  ///< bytes in a full line of this form
  std::size_t count = 0;
  std::uint8_t bytes[kMaxBytes] = {};
  bool isReversed =
      false;  ///< the characters show that the bytes of each group are in reverse order (xxd -e)
};

/// Parses a number that consists of all of `digits`. Inline, because every byte of a dump is such a number.
template <typename Number>
bool parseNumber(std::string_view digits, int base, Number& number) {
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
  return error == std::errc() && stop == end;
}

/// Parses the address before a line. Returns what follows the separator, or nothing if there is no address.
std::string_view parseAddress(std::string_view text, std::string_view separator, std::uint64_t& address);

/// Decodes a line that xxd writes, with groups and lines of any size. The characters after the digits must be
/// as many as the bytes, or absent: otherwise the digits could be those of bits (xxd -b).
bool decodeXxd(std::string_view text, DumpLine& line);

/// Decodes a line that hexdump -C writes. The last one is an address only: it has no bytes.
bool decodeHexdump(std::string_view text, DumpLine& line);

}  // namespace vel::veldump
