// Changes texts in a message source and leaves everything else in the file as it is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// Returns the file with the texts of `wanted`, which has been read from it as `before` and has got other
/// texts, or texts and languages more. `text` is the file in UTF-8 without a byte order mark. Returns nothing
/// if the layout of the file does not allow that: the result is read again and compared.
std::optional<std::string> editSource(std::string_view text, const MessageSource& before,
                                      const MessageSource& wanted);

}  // namespace vel::velmsg
