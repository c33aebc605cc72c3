// A slow reference for the 6-bit code of trace texts, which uses strings of binary digits.
#pragma once

#include <string>

inline const std::string kAlphabet = " ,&*:_~()<>ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

inline std::string binary(std::size_t value, int digits) {
  std::string bits;
  while (digits-- > 0) bits += (value >> digits & 1) != 0 ? '1' : '0';
  return bits;
}

/// Encodes a text into at most 255 bytes.
inline std::string packed(const std::string& text) {
  std::string bits;
  for (const char c : text) {
    if (bits.size() > 2032) break;
    const std::size_t code = c == '\xFF' ? 0 : kAlphabet.find(c);
    bits += code == std::string::npos ? "111111" + binary(static_cast<unsigned char>(c), 8) : binary(code, 6);
  }
  while (bits.size() % 8 != 0) bits += '1';
  std::string bytes;
  for (std::size_t i = 0; i < bits.size() && bytes.size() < 255; i += 8)
    bytes += static_cast<char>(std::stoi(bits.substr(i, 8), nullptr, 2));
  return bytes;
}

/// Decodes such bytes; a truncated code ends the text.
inline std::string unpacked(const std::string& stored) {
  std::string bits, text;
  for (const char c : stored) bits += binary(static_cast<unsigned char>(c), 8);
  for (std::size_t at = 0; at + 6 <= bits.size(); at += 6) {
    const std::size_t code = std::stoul(bits.substr(at, 6), nullptr, 2);
    if (code < kAlphabet.size()) {
      text += kAlphabet[code];
    } else if (at + 14 <= bits.size()) {
      text += static_cast<char>(std::stoul(bits.substr(at + 6, 8), nullptr, 2));
      at += 8;
    } else {
      break;
    }
  }
  return text;
}
