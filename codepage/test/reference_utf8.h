// Slow references for UTF-8, one character at a time.
#pragma once

#include "codepage/test/outcome.h"

Outcome referenceUtf8ToUcs2(std::string_view source, std::size_t targetSize);
Outcome referenceUcs2ToUtf8(std::string_view source, std::size_t targetSize);
