// Writes a value so that the parser reads it back.
#pragma once

#include "foundation/allocator.h"

namespace vel::inifile {

/// Appends the value, between double quotes if it needs them or `quoted` asks for them.
void writeValue(String& out, const char* value, bool quoted);

}  // namespace vel::inifile
