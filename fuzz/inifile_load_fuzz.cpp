// Loads any bytes with any delimiter and makes every query about the model. The input is a byte of
// options, the delimiter, and the bytes.
#include <cstring>
#include <sstream>
#include <string>

#include "foundation/ascii.h"
#include "fuzz/bytes.h"
#include "vel_include/vel_inifile.h"

namespace {

using fuzz::require;

bool decide(const _VelStError& error, unsigned int line, void* errorsLeft) {
  require({line > 0, error.errorClass == VelEnErrorClass::USER_DATA_ERROR});
  return --*static_cast<int*>(errorsLeft) != 0;
}

/// Counted by a stream's own getline.
unsigned int linesIn(const std::string& bytes, char delimiter) {
  std::istringstream stream(bytes);
  char line[1024];
  unsigned int count = 0;
  for (; stream.good(); ++count) stream.getline(line, sizeof line, delimiter);
  return count;
}

void askForOption(const VelClIniFile& file, const VelClIniFileSection& section, const char* name) {
  const VelClIniFileOption* first = section.getFirstOption();
  while (!vel::equalsIgnoringAsciiCase(first->getName(), name)) first = first->getNext();
  require(file.getExistingOption(section, name) == first);
  if (!file.getSection(section.getName()) || file.getExistingSection(section.getName()) != &section) return;
  const char* text = nullptr;
  int number = 0;
  unsigned long magnitude = 0;
  char c = 0;
  bool truth = false;
  require({file.getOption(name, text), text == first->getValue(), file.getOption(name, number),
           file.getOption(name, magnitude), file.getOption(name, c), file.getOptionBool(name, truth)});
}

void askForSection(const VelClIniFile& file, const VelClIniFileSection& section) {
  require(std::strlen(section.getName()) <= VelClIniFileSection::kMaxNameLength);
  for (const auto* option = section.getFirstOption(); option != nullptr; option = option->getNext()) {
    const std::string texts = std::string(option->getName()) + option->getValue() + option->getComment();
    require(texts.size() + 3 <= 1025);
    askForOption(file, section, option->getName());
  }
}

}  // namespace

void fuzz::run(fuzz::Bytes input) {
  const unsigned int options = input.number();
  const auto delimiter = static_cast<char>(input.number());
  const std::string_view bytes = input.rest();
  int errorsLeft = static_cast<int>(options >> 3);
  VelClIniFile file("unused");
  if ((options & 4) != 0) file.setErrorHandler(decide, &errorsLeft);
  const bool isWhole =
      file.loadFromBuffer(bytes.data(), bytes.size(), delimiter, (options & 1) != 0, (options & 2) != 0);
  require(isWhole == ((options & 4) == 0 || errorsLeft != 0 || options >> 3 == 0));
  const unsigned int lines = linesIn(std::string(bytes), delimiter);
  require(isWhole ? file.getLineCount() == lines : file.getLineCount() <= lines);
  for (const auto* section = file.getFirstSection(); section != nullptr; section = section->getNext())
    askForSection(file, *section);
}
