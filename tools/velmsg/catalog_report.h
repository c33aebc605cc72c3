// What velmsg finds out about catalogs.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>

#include "vel_include/vel_messages.h"

namespace vel::velmsg {

/// One line a message: id, language number, text on one line; of all languages or of one. False when there is
/// nothing to list.
bool listMessages(std::ostream& stream, const VelClMessageCatalog& catalog,
                  std::optional<std::uint32_t> language = std::nullopt);

/// One line a language: its number and its number of messages.
bool listLanguages(std::ostream& stream, const VelClMessageCatalog& catalog);

/// One line a difference: "<" id only in the first, ">" id only in the second, "!" id with different
/// inserts and what these are. True when there is none.
bool listDifferences(std::ostream& stream, const VelClMessageCatalog& first,
                     const VelClMessageCatalog& second);

}  // namespace vel::velmsg
