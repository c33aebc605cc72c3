// Finds mistakes in message sources that are well-formed: what translators forget, and what programs cannot
// show.
#pragma once

#include <cstddef>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// Appends the findings in the order of the source, of each kind one for each text; their number is not
/// limited. Every message should have a text in every language that is declared or that another message has.
/// `reference` is the index of the language that the others are compared with.
void checkSource(const MessageSource& source, std::size_t reference, Diagnostics& findings);

}  // namespace vel::velmsg
