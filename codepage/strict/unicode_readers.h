// Strict readers of the forms of Unicode.
#pragma once

#include "codepage/strict/strict_reader.h"

namespace vel::codepage {

/// Return the reader of UTF-8, and the one of UTF-16 in the byte order of the source's CCSID. The caller
/// destroys it.
Reader* makeUtf8Reader(const VelClCCSID& source);
Reader* makeUtf16Reader(const VelClCCSID& source);

}  // namespace vel::codepage
