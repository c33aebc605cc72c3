// How values of the data types with a fixed size are shown, from the bytes that lie in the file.
#pragma once

#include <cstddef>
#include <cstdint>

#include "trace/trace_text_buffer.h"

namespace vel::trace {

/// Whether data of this type is a value's bytes: from "bool" to "long double".
bool isValueType(unsigned int type);

/// Whether `count` bytes can be a value of this value type. More than its size are ignored, but a long double
/// has 8, 10, 12 or 16 bytes: those of a double, or of the x87's extended format with its padding.
bool fitsValue(unsigned int type, std::size_t count);

/// Writes a value that fits.
void writeValue(TextBuffer& out, unsigned int type, const std::uint8_t* bytes, std::size_t count);

std::uint32_t littleEndian32(const std::uint8_t* bytes);

}  // namespace vel::trace
