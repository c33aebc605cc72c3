// Converts the bytes of a message source to UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// Converts UTF-16 or UTF-8 with a byte order mark, and otherwise text of `codepage`. Every ill-formed
/// sequence is reported as a fault of the file with this index. The result has no byte order mark.
std::string toUtf8(std::string_view bytes, const VelClCCSID& codepage, std::size_t file,
                   Diagnostics& diagnostics);

/// Same for text of `codepage` without a byte order mark.
std::string convertToUtf8(std::string_view bytes, const VelClCCSID& codepage, std::size_t file,
                          Diagnostics& diagnostics);

/// Appends a diagnostic unless there are kMaxDiagnostics already. A long argument, which need not be
/// well-formed, is cut.
void addDiagnostic(Diagnostics& diagnostics, Diagnostic diagnostic);

}  // namespace vel::velmsg
