// Writes the messages of a source as functions of C++, so that the compiler counts the inserts.
#pragma once

#include <string>
#include <string_view>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// Returns a header with a function for each message that has a symbolic name: recordsReadMessage for
/// RECORDS_READ, with a parameter for each insert up to the last one that a text in any language has. `name`
/// is the name of its file, of which include guard and namespace are made. Two symbolic names that give the
/// same function are reported.
std::string messageFunctions(const MessageSource& source, std::string_view name, Diagnostics& diagnostics);

}  // namespace vel::velmsg
