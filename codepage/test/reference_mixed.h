// A slow reference for mixed single and double bytes, one character at a time.
#pragma once

#include <string>
#include <string_view>

#include "codepage/test/outcome.h"

/// Returns the unit at `index` of a page, low byte first; the table has the high byte first.
std::string unitAt(const uint16_t* page, unsigned char index, bool foldsNextLine);

Outcome referenceMixedToUcs2(const VelStDoubleByteTable& table, std::string_view source);
