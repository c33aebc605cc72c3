// Strict writers of the forms of Unicode.
#pragma once

#include "codepage/strict/strict_writer.h"

namespace vel::codepage {

/// Return the writer of UTF-8, and the one of UTF-16 in the byte order of the target's CCSID. The caller
/// destroys it.
Writer* makeUtf8Writer(const VelClCCSID& target);
Writer* makeUtf16Writer(const VelClCCSID& target);

}  // namespace vel::codepage
