// Parses CCSIDs as users write them, and lists all of them.
#pragma once

#include <iosfwd>

#include "vel_include/vel_codepage.h"

namespace vel::velconv {

/// Parses a decimal number, optionally after "CCSID", "CP" or both in this order, or a name that the library
/// knows, in any case. Returns false if it is not a valid CCSID.
bool parseCcsid(const char* text, VelClCCSID& ccsid);

/// Writes a line for 0 and for each valid CCSID, with fields separated by tabs: number, name, properties,
/// route to UCS-2, route from UCS-2.
void listCcsids(std::ostream& out);

}  // namespace vel::velconv
