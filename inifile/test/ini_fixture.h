// Support for tests of INI files: models as text, and the headers that nearly all of them need.
#pragma once

#include "platform/test/test.h"
#include "vel_include/vel_inifile.h"

namespace vel::test {

/// Returns the model as "[section]name=value;comment|...", with "|" after each option.
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

/// A table has "(null)" for a null pointer.
inline const char* orNull(const std::string& field) {
  return field == "(null)" ? nullptr : field.c_str();
}

}  // namespace vel::test
