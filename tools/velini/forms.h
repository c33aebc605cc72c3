// Writes sections, options and values in forms that scripts can read.
#pragma once

#include <iosfwd>

#include "tools/velini/shell_names.h"
#include "vel_include/vel_inifile.h"

namespace vel::velini {

enum class Form { Plain, Ini, Shell, Json };

/// Returns false if no form has this name.
bool parseForm(const char* name, Form& form);

/// Write a value, the names of all sections, or options. `names` gives the variables of the shell form. If it
/// has refused one, the output must not be used.
void writeValue(std::ostream& out, Form form, const VelClIniFileOption& option, ShellNames& names);
void writeSections(std::ostream& out, Form form, const VelClIniFile& file);
/// Writes the options of one section, or of all if `only` is null.
void writeOptions(std::ostream& out, Form form, const VelClIniFile& file, const VelClIniFileSection* only,
                  ShellNames& names);

}  // namespace vel::velini
