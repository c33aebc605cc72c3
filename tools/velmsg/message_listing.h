// The messages of a source or of a catalog for scripts, in both cases alike: in the order of their ids, with
// their texts in the order of the languages, and with "\n" for line breaks.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>

#include "tools/velmsg/message_source.h"
#include "vel_include/vel_messages.h"

namespace vel::velmsg {

struct ListedMessage {
  std::string symbolicName;                     ///< catalogs do not have it
  std::map<unsigned int, std::string> texts{};  ///< by LANGID, in UTF-8; the escapes stay
};

using MessageListing = std::map<std::uint32_t, ListedMessage>;

/// Returns the messages that have a text in the language, or all.
MessageListing listingOf(const MessageSource& source, std::optional<std::uint32_t> language = std::nullopt);
MessageListing listingOf(const VelClMessageCatalog& catalog,
                         std::optional<std::uint32_t> language = std::nullopt);

/// Writes a line for each text: id, LANGID, symbolic name and escaped text, separated by tabs.
void writeTsv(std::ostream& out, const MessageListing& listing);
/// Writes an array of objects, one in a line, with "id", "name" unless there is none, and "texts", whose
/// names are the LANGIDs.
void writeJson(std::ostream& out, const MessageListing& listing);

/// Writes a line for each difference: "<" or ">" and an id, or an id and a LANGID, that only one of them has;
/// "@", id and both symbolic names where those differ; "!", id, LANGID and both inserts where those differ;
/// "~", id, LANGID and both texts where only the words differ. Returns true if there is no difference.
bool writeDifferences(std::ostream& out, const MessageListing& first, const MessageListing& second);

}  // namespace vel::velmsg
