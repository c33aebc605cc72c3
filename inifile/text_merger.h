// Writes the options of one file into the text of another.
#pragma once

#include "foundation/allocator.h"
#include "inifile/text_rules.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

/// Whether a question by name finds this one.
inline bool isFirst(const VelClIniFile& file, const VelClIniFileSection& section) {
  return file.getExistingSection(section.getName()) == &section;
}
inline bool isFirst(const VelClIniFile& file, const VelClIniFileSection& section,
                    const VelClIniFileOption& option) {
  return file.getExistingOption(section, option.getName()) == &option;
}
/// Whether there are options that a question by name finds.
inline bool hasOptions(const VelClIniFile& file, const VelClIniFileSection& section) {
  return section.getFirstOption() != nullptr && isFirst(file, section);
}

/// `model` is what the parser reads in `text`. Values change, continuation lines go, missing options come
/// behind the last line of their section, and missing sections at the end. Of `source` the first of each name
/// counts.
String mergedText(Span text, bool allowContinuation, const VelClIniFile& model, const VelClIniFile& source);

}  // namespace vel::inifile
