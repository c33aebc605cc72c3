// Sections, options and values in the forms that scripts read.
#pragma once

#include <iosfwd>

#include "tools/velini/shell_names.h"
#include "vel_include/vel_inifile.h"

namespace vel::velini {

enum class Form { Plain, Ini, Shell, Json };

/// False for a name of no form.
bool parseForm(const char* name, Form& form);

/// Here and below, `names` is asked for the variables of the shell form. What is written is of no use when it
/// has refused one.
void writeValue(std::ostream& out, Form form, const VelClIniFileOption& option, ShellNames& names);
void writeSections(std::ostream& out, Form form, const VelClIniFile& file);
/// Null lists all sections.
void writeOptions(std::ostream& out, Form form, const VelClIniFile& file, const VelClIniFileSection* only,
                  ShellNames& names);

}  // namespace vel::velini
