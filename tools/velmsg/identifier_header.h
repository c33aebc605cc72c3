// Writes what programs include to refer to the messages of a source.
#pragma once

#include <string>
#include <string_view>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// Returns a C header with a macro for each symbolic name, and the comments of the source as they are. `name`
/// is the name of its file, of which the include guard is made.
std::string identifierHeader(const MessageSource& source, std::string_view name);

/// Returns the include guard of a file.
std::string guardOf(std::string_view fileName);

/// Returns a text of a message as a comment of C.
std::string commentOf(std::string_view text);

/// Returns an identifier made of the last component of a file name, without its extension; "messages" for a
/// name without letters and digits.
std::string identifierOf(std::string_view fileName);

}  // namespace vel::velmsg
