// A message source: a text file with numbered messages in several languages, in the format of the message
// compiler of Windows. This header is the parsed form, which the commands of velmsg compile, export and
// check.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vel_include/vel_codepage.h"

namespace vel::velmsg {

/// A position in one of the files of a source. Lines and columns count from 1, columns in characters; a line
/// of 0 means the file as a whole.
struct SourcePosition {
  std::size_t file = 0;  ///< index into MessageSource::files
  std::size_t line = 0;
  std::size_t column = 0;
};

/// The index of no name.
inline constexpr std::size_t kNoName = static_cast<std::size_t>(-1);

/// A name from SeverityNames or FacilityNames.
struct NamedNumber {
  std::string name;  ///< as first written; names are compared without regard to case
  std::uint32_t number = 0;
  std::string symbol;     ///< its macro in the header of identifiers; empty if it has none
  bool declared = false;  ///< false for a name that every source knows without declaring it
  SourcePosition position;
};

/// A name from LanguageNames.
struct SourceLanguage {
  std::string name;
  std::uint16_t number = 0;  ///< the LANGID
  std::string file;          ///< the base of a file name, which no output depends on
  bool declared = false;
  SourcePosition position;
};

/// A text of a message in one language.
struct SourceText {
  std::size_t language = 0;  ///< index into MessageSource::languages
  /// The lines as in the source, in UTF-8, each followed by "\n"; the escapes are those of the source. Empty
  /// for a text without any line. See storedText.
  std::string text;
  SourcePosition position;  ///< of the first line
};

struct SourceMessage {
  std::uint32_t id = 0;      ///< with severity and facility, as programs use it
  std::string symbolicName;  ///< empty if it has none
  /// Indexes into MessageSource::severities and facilities; kNoName, which means 0, before the first
  /// statement of this kind.
  std::size_t severity = kNoName;
  std::size_t facility = kNoName;
  std::string idTypedef;     ///< the MessageIdTypedef that is valid here; empty if there is none
  unsigned outputBase = 16;  ///< 10 or 16: how the header of identifiers writes the id
  /// The comment lines after the message before, without their ";".
  std::vector<std::string> comments;
  std::vector<SourceText> texts;  ///< in the order of the source, at most one for each language
  SourcePosition position;        ///< of MessageId
  SourcePosition symbolPosition;  ///< of the symbolic name
};

/// One or more source files, whose messages form one catalog. The names and the order are those of the files.
struct MessageSource {
  std::vector<std::string> files;  ///< the names, as in diagnostics
  std::vector<NamedNumber> severities;
  std::vector<NamedNumber> facilities;
  std::vector<SourceLanguage> languages;
  /// The comment lines before the first message that are followed by a statement of the header section,
  /// without their ";".
  std::vector<std::string> headerComments;
  std::vector<SourceMessage> messages;
  std::vector<std::string> trailingComments;  ///< after the last message

  // What holds for the messages of the next file.
  std::size_t severity = kNoName;
  std::size_t facility = kNoName;
  std::string idTypedef;
  unsigned outputBase = 16;
};

/// Something wrong in a source.
struct Diagnostic {
  SourcePosition position;
  unsigned long text = 0;  ///< a TextId of texts.h
  std::string argument;    ///< what the text is about; empty if the text says everything
};

/// Diagnostics in the order of the files, at most kMaxDiagnostics.
using Diagnostics = std::vector<Diagnostic>;
inline constexpr std::size_t kMaxDiagnostics = 100;

/// Returns a source without messages that knows the names that need no declaration: the severities Success,
/// Informational, Warning and Error, the facilities System and Application, and the language English (0x409).
MessageSource emptySource();

/// Parses a file and appends its messages to `source`, which emptySource or an earlier call made; the names
/// of earlier files stay known. `bytes` is the contents of the file: UTF-16 or UTF-8 with a byte order mark,
/// or otherwise text of `codepage`. Returns false if there are diagnostics; all of them are appended up to
/// the maximum, and `source` is then of use for its file names only. Takes time linear in the number of
/// bytes.
bool readMessageSource(const std::string& fileName, std::string_view bytes, const VelClCCSID& codepage,
                       MessageSource& source, Diagnostics& diagnostics);

/// Returns a text as a catalog stores it: with "\r\n" for each line break. The escapes, which are expanded
/// when the message is fetched, stay.
std::string storedText(std::string_view text);

/// Returns "file:line:column" as compilers print it, or only the file for a line of 0.
std::string positionText(const MessageSource& source, const SourcePosition& position);

}  // namespace vel::velmsg
