// Writes sections, options and values in forms that scripts can read.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "tools/velini/records.h"
#include "tools/velini/shell_names.h"

namespace vel::velini {

enum class Form { Plain, Ini, Shell, Json };

/// Returns false if no form has this name.
bool parseForm(const char* name, Form& form);

/// Write a value, the names of all sections, or options. `names` gives the variables of the shell form. If it
/// has refused one, the output must not be used.
void writeValue(std::ostream& out, Form form, const Dialect& dialect, const Option& option,
                ShellNames& names);
void writeSections(std::ostream& out, Form form, const Records& records);
/// Writes the options of one section, or of all if `only` is null.
void writeOptions(std::ostream& out, Form form, const Records& records, const Section* only,
                  ShellNames& names);

/// Return single pieces of the forms: a field of a plain line, and lines of an INI file without line break.
std::string plainText(std::string_view text);
std::string iniHeader(const Dialect& dialect, std::string_view section);
std::string iniOption(const Dialect& dialect, const Option& option);

}  // namespace vel::velini
