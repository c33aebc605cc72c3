// Loads a file, which is read in pieces, and the same bytes from memory, which are not: the models must be
// the same, and the editor must have every byte. The input is a byte of options, a byte that tells how often
// the rest is repeated, and the rest; so short inputs make files of many pieces.
#include <algorithm>
#include <cstring>
#include <string>

#include "fuzz/bytes.h"
#include "fuzz/input_file.h"
#include "vel_include/vel_inifile.h"

namespace {

using fuzz::require;

constexpr std::size_t kLargestFile = 300'000;

/// Line ends as they count in a file.
std::string withoutReturns(const std::string& text) {
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') lines += text[i];
  return lines;
}

bool isSame(const VelClIniFileOption& some, const VelClIniFileOption& other) {
  return std::strcmp(some.getName(), other.getName()) == 0 &&
         std::strcmp(some.getValue(), other.getValue()) == 0 &&
         std::strcmp(some.getComment(), other.getComment()) == 0;
}

void compare(const VelClIniFileSection& some, const VelClIniFileSection& other) {
  require(std::strcmp(some.getName(), other.getName()) == 0);
  const auto* option = other.getFirstOption();
  for (const auto* own = some.getFirstOption(); own != nullptr; own = own->getNext()) {
    require(option != nullptr && isSame(*own, *option));
    option = option->getNext();
  }
  require(option == nullptr);
}

void compare(const VelClIniFile& some, const VelClIniFile& other) {
  require(some.getLineCount() == other.getLineCount());
  const auto* section = other.getFirstSection();
  for (const auto* own = some.getFirstSection(); own != nullptr; own = own->getNext()) {
    require(section != nullptr);
    compare(*own, *section);
    section = section->getNext();
  }
  require(section == nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::InputFile input(".ini");
  fuzz::Bytes bytes(data, size);
  const bool allowContinuation = (bytes.number() & 1) != 0;
  const unsigned int repeats = 1 + 16U * bytes.number();
  std::string text;
  for (unsigned int i = 0; i < repeats && text.size() < kLargestFile; ++i) text += bytes.rest();
  input.rewrite(text);
  VelClIniFile file(input.name()), memory("unused");
  require(file.load(allowContinuation));
  const std::string lines = withoutReturns(text);
  require(memory.loadFromBuffer(lines.data(), lines.size(), '\n', true, allowContinuation));
  compare(file, memory);
  VelClIniFileEditor editor(input.name());
  require(editor.load(allowContinuation) && std::string_view(editor.getText(), editor.getLength()) == text);
  return 0;
}
