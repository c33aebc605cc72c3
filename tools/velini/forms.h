// Sections, options and values in the forms that scripts read.
#pragma once

#include <iosfwd>

#include "vel_include/vel_inifile.h"

namespace vel::velini {

enum class Form { Plain, Ini, Shell, Json };

/// False for a name of no form.
bool parseForm(const char* name, Form& form);

void writeValue(std::ostream& out, Form form, const VelClIniFileOption& option);
void writeSections(std::ostream& out, Form form, const VelClIniFile& file);
/// Null lists all sections.
void writeOptions(std::ostream& out, Form form, const VelClIniFile& file, const VelClIniFileSection* only);

}  // namespace vel::velini
