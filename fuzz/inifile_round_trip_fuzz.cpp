// Loads any text, saves it and loads what was saved: whatever saving promises to keep must be there again.
// The input is a byte of options and the text.
#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>

#include "fuzz/bytes.h"
#include "vel_include/vel_inifile.h"

namespace {

using fuzz::require;

bool isControl(char c) {
  return (c >= 0 && c < ' ') || c == '\x7F';
}

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether a quoted value would be read as it is.
bool comesBackQuoted(const std::string& value) {
  for (std::size_t i = 0; i < value.size(); ++i) {
    const bool isNumber = isControl(value[i]) && (value[i] < '\a' || value[i] > '\r');
    if (value[i] == '"' || (isNumber && std::isxdigit(static_cast<unsigned char>(value[i + 1])) != 0))
      return false;
  }
  return true;
}

bool comesBack(const std::string& value) {
  if (value.find(';') != std::string::npos || std::any_of(value.begin(), value.end(), isControl))
    return comesBackQuoted(value);
  return !isSpace(value.front()) && !isSpace(value.back()) &&
         value.find_first_of("\"'") == std::string::npos && value.find("$(") == std::string::npos;
}

bool hasTooLongLine(const std::string& text) {
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line))
    if (line.size() > 1023) return true;
  return false;
}

/// The next option that is saved, this one included.
const VelClIniFileOption* savedFrom(const VelClIniFileOption* option) {
  while (option != nullptr && (*option->getName() == '\0' || *option->getValue() == '\0'))
    option = option->getNext();
  return option;
}

const VelClIniFileSection* savedFrom(const VelClIniFileSection* section) {
  while (section != nullptr && *section->getName() == '\0') section = section->getNext();
  return section;
}

/// Whether everything came back.
bool compareOptions(const VelClIniFileSection& section, const VelClIniFileSection& read) {
  bool isWhole = true;
  const VelClIniFileOption* again = read.getFirstOption();
  for (const auto* option = savedFrom(section.getFirstOption()); option != nullptr;
       option = savedFrom(option->getNext()), again = again->getNext()) {
    require(again != nullptr && std::string(option->getName()) == again->getName());
    const bool isKept = comesBack(option->getValue());
    require(!isKept || (std::string(option->getValue()) == again->getValue() &&
                        std::string(option->getComment()) == again->getComment()));
    isWhole = isWhole && isKept;
  }
  require(again == nullptr);
  return isWhole;
}

bool compare(const VelClIniFile& file, const VelClIniFile& read) {
  bool isWhole = true;
  const VelClIniFileSection* again = read.getFirstSection();
  for (const auto* section = savedFrom(file.getFirstSection()); section != nullptr;
       section = savedFrom(section->getNext()), again = again->getNext()) {
    require(again != nullptr && std::string(section->getName()) == again->getName());
    isWhole = compareOptions(*section, *again) && isWhole;
  }
  require(again == nullptr);
  return isWhole;
}

std::string saved(VelClIniFileSave& file) {
  std::ostringstream stream;
  require(file.save(stream));
  return stream.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  VelClIniFileSave file("unused");
  file.loadFromBuffer(reinterpret_cast<const char*>(data) + 1, size - 1, '\n', (data[0] & 1) != 0,
                      (data[0] & 2) != 0);
  const std::string text = saved(file);
  // What a line holds besides, and every escape, make it longer than the one it was read from.
  if (hasTooLongLine(text)) return 0;
  VelClIniFileSave read("unused");
  require(read.loadFromBuffer(text.data(), text.size(), '\n', true, (data[0] & 4) != 0));
  if (compare(file, read)) require(saved(read) == text);
  return 0;
}
