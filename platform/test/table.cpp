#include "platform/test/table.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace vel::test {

std::vector<std::vector<std::string>> readTable(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<std::vector<std::string>> rows;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    if (line.empty() || line.starts_with("# ")) continue;
    rows.emplace_back();
    for (std::size_t at = 0, end = 0; at <= line.size(); at = end + 1) {
      end = std::min(line.find('\t', at), line.size());
      rows.back().push_back(line.substr(at, end - at));
    }
  }
  if (rows.empty()) throw std::runtime_error("no table: " + path);
  return rows;
}

std::string unescaped(const std::string& text) {
  static const std::string kLetters = "\\anrt0", kCharacters("\\\a\n\r\t\0", 6);
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\' || at + 1 == text.size()) {
      result += text[at];
    } else if (text[++at] == 'x') {
      result += bytesOf(text.substr(at + 1, 2));
      at += 2;
    } else if (text[at] == '{') {
      const std::size_t end = text.find('}', at);
      result.append(std::stoul(text.substr(at + 1)), text.at(end - 1));
      at = end;
    } else {
      result += kCharacters.at(kLetters.find(text[at]));
    }
  }
  return result;
}

std::vector<std::vector<std::string>> readTexts(const std::string& path) {
  auto rows = readTable(path);
  for (auto& row : rows) std::ranges::transform(row, row.begin(), unescaped);
  return rows;
}

std::string replaced(std::string text, std::string_view old, std::string_view with) {
  for (std::size_t at = 0; (at = text.find(old, at)) != std::string::npos; at += with.size())
    text.replace(at, old.size(), with);
  return text;
}

std::string bytesOf(const std::string& digits) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  return bytes;
}

std::u16string unitsOf(const std::string& digits) {
  const std::string bytes = bytesOf(digits);
  std::u16string units(bytes.size() / 2, u'\0');
  std::memcpy(units.data(), bytes.data(), units.size() * 2);
  return units;
}

}  // namespace vel::test
