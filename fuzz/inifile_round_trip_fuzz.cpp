// Loads any text, saves it and loads what was saved: whatever saving promises to keep must round-trip.
// The input is a byte of options and the text.
#include <algorithm>
#include <cctype>
#include <sstream>

#include "fuzz/bytes.h"
#include "fuzz/ini_model.h"

namespace {

using fuzz::require;
using Model = std::vector<fuzz::IniSection>;

bool isControl(char c) {
  return (c >= 0 && c < ' ') || c == '\x7F';
}

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether a quoted value would be read as it is.
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

bool hasTooLongLine(const std::string& text) {
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line))
    if (line.size() > 1023) return true;
  return false;
}

/// Sections with names, and of these the options that have names and values.
Model savedPartOf(Model model) {
  std::erase_if(model, [](auto& section) { return section.name.empty(); });
  for (auto& section : model)
    std::erase_if(section.options, [](auto& option) { return option.name.empty() || option.value.empty(); });
  return model;
}

/// Overwrites the values and comments that need not round-trip with those that were read; returns whether
/// there are any.
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

}  // namespace

void fuzz::run(fuzz::Bytes bytes) {
  const unsigned int options = bytes.number();
  VelClIniFileSave file("unused"), read("unused");
  file.loadFromBuffer(bytes.rest().data(), bytes.rest().size(), '\n', (options & 1) != 0, (options & 2) != 0);
  const std::string text = saved(file);
  // Escapes, and what a line holds besides, make it longer than the one it was read from.
  if (hasTooLongLine(text)) return;
  require(read.loadFromBuffer(text.data(), text.size(), '\n', true, (options & 4) != 0));
  Model model = savedPartOf(modelOf(file));
  const bool isLost = excuseLost(model, modelOf(read));
  require(model == modelOf(read));
  if (!isLost) require(saved(read) == text);
}
