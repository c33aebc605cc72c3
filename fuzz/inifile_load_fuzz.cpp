// Loads any bytes with any delimiter and asks every question about what came of them. The input is a byte of
// options, the delimiter, and the bytes.
#include <cstring>
#include <sstream>
#include <string>

#include "base/ascii.h"
#include "fuzz/bytes.h"
#include "vel_include/vel_inifile.h"

namespace {

using fuzz::require;

bool decide(const _VelStError& error, unsigned int line, void* errorsLeft) {
  require(line > 0 && error.errorClass == VelEnErrorClass::USER_DATA_ERROR);
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
  require(file.getOption(name, text) && text == first->getValue());
  require(file.getOption(name, number) && file.getOption(name, magnitude) && file.getOption(name, c) &&
          file.getOptionBool(name, truth));
}

void askForSection(const VelClIniFile& file, const VelClIniFileSection& section) {
  require(std::strlen(section.getName()) <= VelClIniFileSection::kMaxNameLength);
  for (const auto* option = section.getFirstOption(); option != nullptr; option = option->getNext()) {
    const std::size_t name = std::strlen(option->getName());
    const std::size_t value = std::strlen(option->getValue());
    const std::size_t comment = std::strlen(option->getComment());
    require(name + value + comment + 3 <= 1025);
    askForOption(file, section, option->getName());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const auto options = static_cast<unsigned int>(data[0]);
  const auto delimiter = static_cast<char>(data[1]);
  const auto* const bytes = reinterpret_cast<const char*>(data) + 2;
  int errorsLeft = static_cast<int>(options >> 3);
  VelClIniFile file("unused");
  if ((options & 4) != 0) file.setErrorHandler(decide, &errorsLeft);
  const bool isWhole =
      file.loadFromBuffer(bytes, size - 2, delimiter, (options & 1) != 0, (options & 2) != 0);
  require(isWhole == ((options & 4) == 0 || errorsLeft != 0 || options >> 3 == 0));
  const unsigned int lines = linesIn(std::string(bytes, size - 2), delimiter);
  require(isWhole ? file.getLineCount() == lines : file.getLineCount() <= lines);
  for (const auto* section = file.getFirstSection(); section != nullptr; section = section->getNext())
    askForSection(file, *section);
  return 0;
}
