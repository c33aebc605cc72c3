// Parses CCSIDs as users write them.
#pragma once

#include "vel_include/vel_codepage.h"

namespace vel::tools {

/// Whether a CCSID is valid, or has at least a name.
bool isKnown(const VelClCCSID& ccsid);

/// Parses a decimal number, optionally after "CCSID", a name that velGetCCSIDOfName knows, or a number after
/// "CP" or "CCSIDCP", in any case. Returns false if the CCSID is not known.
bool parseCcsid(const char* text, VelClCCSID& ccsid);

}  // namespace vel::tools
