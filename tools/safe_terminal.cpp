// Replaces control characters in the output to a terminal. The decision is made byte by byte, without
// decoding: U+0080 to U+009F are C2 80 to C2 9F in UTF-8, so it is enough to remember the byte before, also
// where the text is ill-formed.
#include "tools/safe_terminal.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <string_view>

#include "platform/descriptors.h"

namespace vel::tools {

namespace {

/// The control characters that only move the cursor on, or ring the bell.
constexpr std::string_view kHarmless = "\a\t\n\r";

/// The first byte of U+0080 to U+009F in UTF-8. The second byte has the number of the character.
constexpr char kFirstOfTwo = '\xC2';

}  // namespace

char SafeBuffer::safe(char c) {
  const auto byte = static_cast<unsigned char>(c);
  const bool isControl = byte < 0x20 || byte == 0x7F;
  const bool isLateControl = previous_ == kFirstOfTwo && byte >= 0x80 && byte < 0xA0;
  previous_ = c;
  return isLateControl || (isControl && kHarmless.find(c) == std::string_view::npos) ? '?' : c;
}

SafeBuffer::int_type SafeBuffer::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  return target_->sputc(safe(traits_type::to_char_type(c)));
}

std::streamsize SafeBuffer::xsputn(const char* text, std::streamsize size) {
  // Copied in pieces, because the caller's text is const and the target should not get single characters.
  std::array<char, 512> part;
  for (std::streamsize done = 0; done < size;) {
    const std::streamsize count = std::min<std::streamsize>(size - done, part.size());
    std::transform(text + done, text + done + count, part.begin(), [this](char c) { return safe(c); });
    const std::streamsize written = target_->sputn(part.data(), count);
    done += written;
    if (written != count) return done;
  }
  return size;
}

SafeTerminal::Stream::Stream(std::ostream& stream, int descriptor)
    : stream_(stream), previous_(stream.rdbuf()), buffer_(previous_) {
  if (platform::isTerminal(descriptor)) stream_.rdbuf(&buffer_);
}

SafeTerminal::SafeTerminal()
    : output_(std::cout, platform::kStandardOutput), errors_(std::cerr, platform::kStandardError) {}

}  // namespace vel::tools
