// CCSIDs as users name them, and the list of all of them.
#pragma once

#include <iosfwd>

#include "vel_include/vel_codepage.h"

namespace vel::velconv {

/// From the number in decimal digits, also behind "CP" or "CCSID", or from a name, in any letter case. False
/// when that is no CCSID of the table.
bool parseCcsid(const char* text, VelClCCSID& ccsid);

/// A line each, with tabs between: number, name, properties, way to UCS-2, way from there.
void listCcsids(std::ostream& out);

}  // namespace vel::velconv
