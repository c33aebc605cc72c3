// A slow conversion of mixed single and double bytes, one character at a time.
#pragma once

#include <string>
#include <string_view>

#include "codepage/test/outcome.h"

/// The unit at `index` of a page, low byte first; the table has it the other way round.
std::string unitAt(const uint16_t* page, unsigned char index, bool foldsNextLine);

Outcome referenceMixedToUcs2(const VelStDoubleByteTable& table, std::string_view source);
