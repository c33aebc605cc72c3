// The names that an error number has.
#pragma once

#include <cstdint>
#include <iosfwd>

namespace vel::velmsg {

/// Reads a decimal or, behind "0x", hexadecimal number of 32 bits, signed or unsigned. False for anything
/// else.
bool parseNumber(const char* text, std::uint32_t& number);

/// One line a name: what it is a name of (identifier, class, severity, action, platform), and the name.
/// False when there is none.
bool listErrorNames(std::ostream& stream, std::uint32_t number);

}  // namespace vel::velmsg
