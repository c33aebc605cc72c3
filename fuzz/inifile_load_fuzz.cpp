// Loads any bytes with any delimiter and queries the whole model; then saves and loads it again: values that
// can be saved must round-trip. The input is a byte of options, the delimiter, and
// the bytes.
#include "base/ascii.h"
#include "fuzz/bytes.h"
#include "fuzz/ini_model.h"

namespace fuzz::inifile_load {

namespace {

using Model = std::vector<IniSection>;

// ---- Queries

bool decide(const _VelStError& error, unsigned int line, void* errorsLeft) {
  require({line > 0, error.errorClass == VelEnErrorClass::USER_DATA_ERROR});
  return --*static_cast<int*>(errorsLeft) != 0;
}

/// Counts lines with getline() of the standard library.
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

// ---- Saving

bool isControl(char c) {
  return (c >= 0 && c < ' ') || c == '\x7F';
}

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether a value in quotes round-trips.
bool roundTripsQuoted(const std::string& value) {
  for (std::size_t i = 0; i < value.size(); ++i) {
    const bool isNumber = isControl(value[i]) && (value[i] < '\a' || value[i] > '\r');
    if (value[i] == '"' || (isNumber && std::isxdigit(static_cast<unsigned char>(value[i + 1])) != 0))
      return false;
  }
  return true;
}

bool roundTrips(const std::string& value) {
  if (value.find(';') != std::string::npos || std::any_of(value.begin(), value.end(), isControl))
    return roundTripsQuoted(value);
  return !isSpace(value.front()) && !isSpace(value.back()) &&
         value.find_first_of("\"'") == std::string::npos && value.find("$(") == std::string::npos;
}

/// Returns the sections with names, and of these the options with names and values.
Model savedPartOf(Model model) {
  std::erase_if(model, [](auto& section) { return section.name.empty(); });
  for (auto& section : model)
    std::erase_if(section.options, [](auto& option) { return option.name.empty() || option.value.empty(); });
  return model;
}

/// Overwrites the values and comments that need not round-trip with those that were read. Returns whether
/// there were any.
bool excuseLost(Model& model, const Model& read) {
  bool isLost = false;
  for (std::size_t i = 0; i < model.size() && i < read.size(); ++i)
    for (std::size_t k = 0; k < model[i].options.size() && k < read[i].options.size(); ++k) {
      auto& option = model[i].options[k];
      if (roundTrips(option.value)) continue;
      option.value = read[i].options[k].value, option.comment = read[i].options[k].comment;
      isLost = true;
    }
  return isLost;
}

std::string saved(VelClIniFileSave& file) {
  std::ostringstream stream;
  require(file.save(stream));
  return stream.str();
}

void requireRoundTrip(VelClIniFileSave& file) {
  const std::string text = saved(file);
  // Escapes and separators can make a line longer than the one that it was read from.
  if (longestLine(text) > 1023) return;
  for (const bool allowContinuation : {false, true}) {
    VelClIniFileSave read("unused");
    require(read.loadFromBuffer(text.data(), text.size(), '\n', true, allowContinuation));
    Model model = savedPartOf(modelOf(file));
    const Model again = modelOf(read);
    const bool isLost = excuseLost(model, again);
    require(model == again);
    if (!isLost) require(saved(read) == text);
  }
}

void run(Bytes input) {
  const unsigned int options = input.byte();
  const auto delimiter = static_cast<char>(input.byte());
  const std::string_view bytes = input.rest();
  int errorsLeft = static_cast<int>(options >> 3);
  VelClIniFileSave file("unused");
  if ((options & 4) != 0) file.setErrorHandler(decide, &errorsLeft);
  const bool isWhole =
      file.loadFromBuffer(bytes.data(), bytes.size(), delimiter, (options & 1) != 0, (options & 2) != 0);
  require(isWhole == ((options & 4) == 0 || errorsLeft != 0 || options >> 3 == 0));
  const unsigned int lines = linesIn(std::string(bytes), delimiter);
  require(isWhole ? file.getLineCount() == lines : file.getLineCount() <= lines);
  for (const auto* section = file.getFirstSection(); section != nullptr; section = section->getNext())
    askForSection(file, *section);
  // With another delimiter names can contain line breaks.
  if (delimiter == '\n') requireRoundTrip(file);
}

const Target target("inifile_load", run);

}  // namespace

}  // namespace fuzz::inifile_load
