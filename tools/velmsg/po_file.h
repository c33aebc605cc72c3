// A .po file of gettext: the texts of one language, for the tools of translators. This header is the parsed
// form; what its entries mean for a message source is po_translation.h's work.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

struct PoEntry {
  std::vector<std::string> comments;    ///< of the translator, without "# "
  std::vector<std::string> extracted;   ///< of the program's author, without "#. "
  std::vector<std::string> references;  ///< the lines of places in the source, without "#: "
  std::vector<std::string> flags;
  std::vector<std::string> previous;  ///< the lines of the earlier texts, without "#| "
  std::optional<std::string> context;
  std::string id;
  std::string text;
  bool isObsolete = false;
  SourcePosition position;      ///< of the first keyword
  SourcePosition idPosition;    ///< of msgid
  SourcePosition textPosition;  ///< of msgstr

  bool hasFlag(std::string_view flag) const;
  /// Whether this is the entry for the fields of the header.
  bool isHeader() const { return !context && id.empty() && !isObsolete; }
};

struct PoFile {
  std::vector<PoEntry> entries;  ///< the header, if there is one, is one of them

  /// Returns null if there is none.
  const PoEntry* header() const;
  /// Returns the value of a field of the header, "" if it is missing.
  std::string headerField(std::string_view name) const;
};

inline constexpr std::string_view kFuzzy = "fuzzy";

/// Parses a file. `bytes` are UTF-8 or in the code page that the header states, which is UTF-8 afterwards;
/// `file` is the index that positions have. Returns false if there are diagnostics; then the entries are
/// those that are not affected. Takes time linear in the number of bytes.
bool readPo(std::string_view bytes, std::size_t file, PoFile& po, Diagnostics& diagnostics);

/// Returns the lines of a keyword with its text.
std::vector<std::string> poFieldLines(std::string_view keyword, std::string_view text);

/// Returns a file in UTF-8. Reading it gives the same entries.
std::string writePo(const PoFile& po);

}  // namespace vel::velmsg
