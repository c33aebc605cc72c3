// Writes a value so that the parser reads it back unchanged.
#pragma once

#include "foundation/allocator.h"

namespace vel::inifile {

/// Appends the value, in double quotes if it needs them or `quoted` is true.
void writeValue(String& out, const char* value, bool quoted);

}  // namespace vel::inifile
