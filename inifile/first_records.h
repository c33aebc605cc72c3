// Names may repeat in an INI file; a search by name finds the first record of a name.
#pragma once

#include "vel_include/vel_inifile.h"

namespace vel::inifile {

/// Whether a search by name finds this record, and not an earlier one of the same name.
inline bool isFirst(const VelClIniFile& file, const VelClIniFileSection& section) {
  return file.getExistingSection(section.getName()) == &section;
}
inline bool isFirst(const VelClIniFile& file, const VelClIniFileSection& section,
                    const VelClIniFileOption& option) {
  return file.getExistingOption(section, option.getName()) == &option;
}

}  // namespace vel::inifile
