// Lists the names of an error code.
#pragma once

#include <cstdint>
#include <iosfwd>

namespace vel::velmsg {

/// Parses a number of 32 bits, signed or unsigned, decimal or, after "0x", hexadecimal. Returns false for
/// anything else.
bool parseNumber(const char* text, std::uint32_t& number);

/// Writes a line per name: its kind (identifier, class, severity, action, platform) and the name. Returns
/// false if the code is unknown.
bool listErrorNames(std::ostream& stream, std::uint32_t number);

}  // namespace vel::velmsg
