// Models as text, for comparing them in tests.
#pragma once

#include <string>
#include <string_view>

#include "vel_include/vel_inifile.h"

namespace vel::test {

/// "[section]name=value;comment|..." with "|" after each option.
inline std::string shown(const VelClIniFile& file) {
  std::string text;
  VelClIniFileSectionCursor section(file);
  for (bool more = section.setToFirst(); more; more = section.setToNext()) {
    text += std::string("[") + section.getSection() + "]";
    VelClIniFileOptionCursor option(section);
    for (bool next = option.setToFirst(); next; next = option.setToNext()) {
      text += std::string(option.getOption()) + "=" + option.getValue();
      if (*option.getComment() != '\0') text += std::string(";") + option.getComment();
      text += "|";
    }
  }
  return text;
}

inline bool loadText(VelClIniFile& file, std::string_view text, bool keepDuplicates = true,
                     bool continuation = true) {
  return file.loadFromBuffer(text.data(), text.size(), '\n', keepDuplicates, continuation);
}

}  // namespace vel::test
