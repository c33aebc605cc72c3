// The model of an INI file as plain values that can be compared.
#pragma once

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "vel_include/vel_inifile.h"

namespace fuzz {

struct IniOption {
  std::string name, value, comment;

  bool operator==(const IniOption&) const = default;
};

struct IniSection {
  std::string name;
  std::vector<IniOption> options;

  bool operator==(const IniSection&) const = default;
};

/// Returns all sections and options in the order of the file, except one option.
inline std::vector<IniSection> modelOf(const VelClIniFile& file,
                                       const VelClIniFileOption* without = nullptr) {
  std::vector<IniSection> model;
  for (const auto* section = file.getFirstSection(); section != nullptr; section = section->getNext()) {
    model.push_back({section->getName(), {}});
    for (const auto* option = section->getFirstOption(); option != nullptr; option = option->getNext())
      if (option != without)
        model.back().options.push_back({option->getName(), option->getValue(), option->getComment()});
  }
  return model;
}

/// Returns the first option of these names, or null.
inline const VelClIniFileOption* findOption(const VelClIniFile& file, const std::string& section,
                                            const std::string& option) {
  const VelClIniFileSection* const found = file.getExistingSection(section.c_str());
  return found != nullptr ? file.getExistingOption(*found, option.c_str()) : nullptr;
}

/// Returns the length of the longest line.
inline std::size_t longestLine(const std::string& text) {
  std::istringstream lines(text);
  std::size_t longest = 0;
  for (std::string line; std::getline(lines, line);) longest = std::max(longest, line.size());
  return longest;
}

}  // namespace fuzz
