// Lists all CCSIDs and their names.
#pragma once

#include <iosfwd>

namespace vel::velconv {

/// Writes a line for 0 and for each known CCSID, with fields separated by tabs: number, name in the table,
/// properties, route to UCS-2, route from UCS-2, and the everyday names, separated by blanks.
void listCcsids(std::ostream& out);

/// Writes everything that tools::parseCcsid accepts without a prefix, each with its CCSID after a tab.
void listNames(std::ostream& out);

/// Writes the level of kernels, see velGetKernelLevel.
void showKernels(std::ostream& out);

}  // namespace vel::velconv
