// Writes the messages of a source as a string table, for programs that work without a catalog file.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// The greatest id of a message in a string table, which has an entry for each smaller id as well.
inline constexpr std::uint32_t kMaxTableId = 0xFFFF;

/// Returns a C++ file with the array <name>_texts and its size, <name>_text_count. The texts are those in
/// `language`, or the first one of a message without it. A message that a table cannot hold is reported.
std::string stringTable(const MessageSource& source, std::string_view name, std::uint16_t language,
                        Diagnostics& diagnostics);

/// Returns the language of a table if the user names none: English (United States) if the source has it,
/// otherwise that of the first text.
std::uint16_t languageOfTable(const MessageSource& source);

/// Converts a text of a source to the notation of tables, where "%%" and "%1" to "%10" are the only escapes.
/// Returns std::nullopt if it has an insert that cannot be written so.
std::optional<std::string> tableText(std::string_view text);

}  // namespace vel::velmsg
