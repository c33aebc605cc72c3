// Formats the values of data types with a fixed size, from their bytes in a trace file.
#pragma once

#include <cstddef>
#include <cstdint>

#include "trace/trace_text_buffer.h"

namespace vel::trace {

/// Whether data of this type is a value: any type from BOOLEAN_VALUE to LONG_DOUBLE.
bool isValueType(unsigned int type);

/// Whether `count` bytes can hold a value of this value type. Bytes after the value are ignored, except that
/// a long double must have 8, 10, 12 or 16 bytes: a double, or the x87's extended format with its padding.
bool fitsValue(unsigned int type, std::size_t count);

/// Writes a value; `type` is a value type and fitsValue() holds.
void writeValue(TextBuffer& out, unsigned int type, const std::uint8_t* bytes, std::size_t count);

std::uint32_t littleEndian32(const std::uint8_t* bytes);

}  // namespace vel::trace
