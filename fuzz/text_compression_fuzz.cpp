// The 6-bit code of trace texts, both ways, beside a conversion bit by bit.
#include <cstring>
#include <memory>
#include <string>

#include "fuzz/bytes.h"
#include "trace/test/reference_compression.h"
#include "trace/text_compression.h"

namespace {

constexpr std::string_view kAlphabet = " ,&*:_~()<>ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
using Bits = std::vector<bool>;

std::string decoded(const Bits& bits) {
  std::string text;
  const auto number = [&bits](std::size_t from, std::size_t count) {
    std::size_t value = 0;
    for (std::size_t i = from; i < from + count; ++i) value = value * 2 + (bits[i] ? 1 : 0);
    return value;
  };
  for (std::size_t at = 0; at + 6 <= bits.size(); at += 6) {
    const std::size_t code = number(at, 6);
    if (code < kAlphabet.size()) {
      text += kAlphabet[code];
    } else if (at + 14 <= bits.size()) {
      text += static_cast<char>(number(at + 6, 8));
      at += 8;
    } else {
      break;
    }
  }
  return text;
}

void requireDecoded(const unsigned char* stored, std::size_t length) {
  Bits bits;
  for (std::size_t i = 0; i < length * 8; ++i) bits.push_back((stored[i / 8] >> (7 - i % 8) & 1) != 0);
  const std::unique_ptr<char[]> out(new char[length * 8 / 6 + 1 + vel::trace::kSlack]);
  const std::size_t size = vel::trace::decompress(stored, length, out.get());
  fuzz::require(size == std::strlen(out.get()) || std::memchr(out.get(), '\0', size) != nullptr);
  fuzz::require(std::string_view(out.get(), size) == decoded(bits));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<unsigned char> stored(data, data + size);
  requireDecoded(stored.data(), size);
  const std::unique_ptr<unsigned char[]> out(
      new unsigned char[vel::trace::kLongestCompressed + vel::trace::kSlack]);
  const auto* const text = reinterpret_cast<const char*>(stored.data());
  const std::size_t length = vel::trace::compress(text, size, out.get());
  fuzz::require(std::string(out.get(), out.get() + length) == packed({text, size}));
  requireDecoded(out.get(), length);
  return 0;
}
