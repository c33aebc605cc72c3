// The lines of two other programs:
//
//   00000000: 4142 4344 4546 4748 494a 4b4c 4d4e 4f50  ABCDEFGHIJKLMNOP       xxd
//   00000000  41 42 43 44 45 46 47 48  49 4a 4b 4c 4d 4e 4f 50  |ABCDEFGHIJKLMNOP|   hexdump -C
//
// Short lines have blanks in place of digits.
#include "tools/veldump/peer_dumps.h"

#include <algorithm>

namespace vel::veldump {

namespace {

bool isBlank(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

/// Decodes the two digits at a position. Returns false if there are none.
bool decodeByte(std::string_view text, std::size_t position, std::uint8_t& byte) {
  return position + 2 <= text.size() && parseNumber(text.substr(position, 2), 16, byte);
}

/// Whether these are blanks and `count` characters, or nothing at all.
bool areCharacters(std::string_view text, std::size_t count) {
  constexpr std::size_t kLeastBlanks = 2;
  if (isBlank(text) && text.size() < kLeastBlanks + count) return true;
  return text.size() >= kLeastBlanks + count && isBlank(text.substr(0, text.size() - count));
}

/// Whether the characters show the bytes when each group of `groupSize` bytes is read from its end, and do
/// not show them in the order of the digits.
bool areReversed(std::string_view characters, const DumpLine& line, std::size_t groupSize) {
  const auto shows = [&](std::size_t index, std::uint8_t byte) {
    return characters[index] == (byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.');
  };
  bool isForward = true, isBackward = line.count % groupSize == 0;
  for (std::size_t i = 0; i < line.count; ++i) {
    isForward = isForward && shows(i, line.bytes[i]);
    isBackward =
        isBackward && shows(i, line.bytes[i / groupSize * groupSize + groupSize - 1 - i % groupSize]);
  }
  return isBackward && !isForward;
}

}  // namespace

std::string_view parseAddress(std::string_view text, std::string_view separator, std::uint64_t& address) {
  constexpr std::size_t kLeastDigits = 8;
  const std::size_t digits = text.find(separator);
  if (digits == std::string_view::npos || digits < kLeastDigits) return {};
  return parseNumber(text.substr(0, digits), 16, address) ? text.substr(digits + separator.size())
                                                          : std::string_view();
}

bool decodeXxd(std::string_view text, DumpLine& line) {
  const std::string_view groups = parseAddress(text, ": ", line.address);
  std::size_t position = 0, groupSize = 0;
  line.count = 0;
  while (line.count < DumpLine::kMaxBytes && decodeByte(groups, position, line.bytes[line.count])) {
    ++line.count;
    position += 2;
    // One blank separates groups, two end them.
    if (groups.substr(position, 1) != " ") continue;
    if (groupSize == 0) groupSize = line.count;
    if (groups.substr(position, 2) != "  ") ++position;
  }
  line.capacity = line.count;
  const std::string_view rest = groups.substr(std::min(position, groups.size()));
  if (line.count == 0 || !areCharacters(rest, line.count)) return false;
  line.isReversed = groupSize > 1 && rest.size() > line.count &&
                    areReversed(rest.substr(rest.size() - line.count), line, groupSize);
  return true;
}

bool decodeHexdump(std::string_view text, DumpLine& line) {
  constexpr std::size_t kBytes = 16, kWidth = 3, kBar = kBytes * kWidth + 2;
  line.count = 0;
  line.capacity = kBytes;
  if (text.size() >= 8 && parseNumber(text, 16, line.address)) return true;
  const std::string_view digits = parseAddress(text, "  ", line.address);
  if (digits.size() <= kBar || digits[kBar] != '|' || !digits.ends_with('|')) return false;
  const auto at = [](std::size_t index) { return index * kWidth + (index < kBytes / 2 ? 0 : 1); };
  while (line.count < kBytes && decodeByte(digits, at(line.count), line.bytes[line.count])) {
    if (digits[at(line.count) + 2] != ' ') return false;
    ++line.count;
  }
  const std::size_t end = line.count == kBytes ? kBar : at(line.count);
  return line.count > 0 && isBlank(digits.substr(end, kBar - end)) && digits.size() == kBar + line.count + 2;
}

}  // namespace vel::veldump
