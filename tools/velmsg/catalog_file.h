// Finds the file of a catalog that a user names.
#pragma once

#include <memory>

#include "vel_include/vel_messages.h"

namespace vel::velmsg {

/// Opens the library of this name or, if there is none, the file itself, which may have any extension. If the
/// file has no messages, opens its translated resources, as the formatter of Windows does: for
/// "dir/a.dll" the file "dir/de-DE/a.dll.mui" of the user's language, or that of en-US. A catalog that could
/// not be opened is not valid.
std::unique_ptr<VelClMessageCatalog> openCatalogFile(const char* file);

}  // namespace vel::velmsg
