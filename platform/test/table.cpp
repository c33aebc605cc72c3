#include "platform/test/table.h"

#include <algorithm>
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
    const bool escaped = text[at] == '\\' && at + 1 < text.size();
    result += escaped ? kCharacters.at(kLetters.find(text[++at])) : text[at];
  }
  return result;
}

}  // namespace vel::test
