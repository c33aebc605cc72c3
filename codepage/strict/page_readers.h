// Creates strict readers of single-byte and mixed code pages.
#pragma once

#include "codepage/strict/strict_reader.h"

namespace vel::codepage {

/// Returns a new reader of a code page that is not a form of Unicode, or null if no route leads from it
/// to UCS-2. The caller destroys the reader.
Reader* makePageReader(const VelClCCSID& source);

}  // namespace vel::codepage
