// Compares two INI files by section and option.
#pragma once

#include <iosfwd>

#include "tools/velini/forms.h"
#include "tools/velini/records.h"

namespace vel::velini {

/// Writes what is removed from `left`, added in `right` or changed, in any form but that of the shell.
/// Compares one section only if `section` is not null. Returns false if nothing differs. Comments and the
/// order of sections and options do not count.
bool writeDifferences(std::ostream& out, Form form, const Records& left, const Records& right,
                      const char* section);

}  // namespace vel::velini
