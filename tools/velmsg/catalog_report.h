// Lists the messages and languages of catalogs, and compares catalogs.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string_view>

#include "vel_include/vel_messages.h"

namespace vel::velmsg {

/// Writes a text on one line: line breaks, tabs and backslashes are escaped. CR LF counts as one line break.
void writeEscaped(std::ostream& stream, std::string_view text);

/// Writes a line per message, of all languages or of one: id, LANGID and the escaped text. Returns
/// false if there is nothing to list.
bool listMessages(std::ostream& stream, const VelClMessageCatalog& catalog,
                  std::optional<std::uint32_t> language = std::nullopt);

/// Writes a line per language: its LANGID and the number of its messages. Returns false if the catalog is
/// empty.
bool listLanguages(std::ostream& stream, const VelClMessageCatalog& catalog);

/// Writes a line per difference: "<" for an id only in the first catalog, ">" for one only in the second, "!"
/// for one with different inserts, and those. Returns true if the catalogs do not differ.
bool listDifferences(std::ostream& stream, const VelClMessageCatalog& first,
                     const VelClMessageCatalog& second);

}  // namespace vel::velmsg
