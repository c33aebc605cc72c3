// Strict writers of code pages, of single bytes and of mixed ones.
#pragma once

#include "codepage/strict/strict_writer.h"

namespace vel::codepage {

/// Returns the writer of any code page that is not a form of Unicode; the caller destroys it. Null when the
/// target cannot be converted to.
Writer* makePageWriter(const VelClCCSID& target);

}  // namespace vel::codepage
