// Slow UTF-8 conversions, written from their rules one character at a time.
#pragma once

#include <vector>

#include "codepage/test/outcome.h"

Outcome referenceUtf8ToUcs2(std::string_view source, std::size_t targetSize);
Outcome referenceUcs2ToUtf8(std::string_view source, std::size_t targetSize);

/// Texts of one kind and mixed ones, in UCS-2, with pairs and invalid units; of `shortest` units and up to
/// `spread` more, and a few besides.
std::vector<std::string> sampleTexts(int count, std::size_t shortest, std::size_t spread);
