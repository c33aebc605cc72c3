// Parses CCSIDs as users write them, and lists all of them.
#pragma once

#include <iosfwd>

#include "vel_include/vel_codepage.h"

namespace vel::velconv {

/// Parses a decimal number, optionally after "CCSID", a name that velGetCCSIDOfName knows, or a number after
/// "CP" or "CCSIDCP", in any case. Returns false if it is neither a valid CCSID nor one that has a name.
bool parseCcsid(const char* text, VelClCCSID& ccsid);

/// Writes a line for 0 and for each known CCSID, with fields separated by tabs: number, name in the table,
/// properties, route to UCS-2, route from UCS-2, and the everyday names, separated by blanks.
void listCcsids(std::ostream& out);

/// Writes everything that parseCcsid accepts without a prefix, each with its CCSID after a tab.
void listNames(std::ostream& out);

}  // namespace vel::velconv
