// The single-byte tables in the form that kernels look up: units in the byte order of the host.
#pragma once

#include <cstdint>

namespace vel::codepage {

/// Returns the 256 units of a table that velGetSBCStoUCS2Table returned, in the byte order of the host, so
/// that a kernel need not swap bytes; with U+000A in place of U+0085 if `foldsNextLine`.
const std::uint16_t* hostTableOf(const std::uint16_t* values, bool foldsNextLine) noexcept;

}  // namespace vel::codepage
