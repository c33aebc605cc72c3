// Strict readers of code pages, of single bytes and of mixed ones.
#pragma once

#include "codepage/strict/strict_reader.h"

namespace vel::codepage {

/// Returns the reader of any code page that is not a form of Unicode; the caller destroys it. Null when the
/// source cannot be converted.
Reader* makePageReader(const VelClCCSID& source);

}  // namespace vel::codepage
