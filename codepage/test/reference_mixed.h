// A slow conversion of mixed single and double bytes, one character at a time.
#pragma once

#include <string_view>

#include "codepage/test/outcome.h"

Outcome referenceMixedToUcs2(const VelStDoubleByteTable& table, std::string_view source);
