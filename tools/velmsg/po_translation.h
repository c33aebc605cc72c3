// Message sources as .po files and back: one file for each language, in which the texts of another language,
// the reference, are what is translated.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmsg/message_source.h"
#include "tools/velmsg/po_file.h"

namespace vel::velmsg {

/// The field of the header that has the number of the language. "Language" has its name, which not every
/// number has.
inline constexpr std::string_view kPoLanguageField = "X-Language-Number";

/// Returns the index of the language that other texts are translations of: the one with this LANGID or,
/// without a number, the first one that has a text. Returns kNoName if there is none.
std::size_t referenceLanguage(const MessageSource& source, std::uint16_t number = 0);

/// Returns the text of a message in a language; null if there is none. Several names may have the number of
/// the language; all of them count.
const SourceText* findText(const MessageSource& source, const SourceMessage& message, std::size_t language);

/// Returns the index of the language with this LANGID, or kNoName.
std::size_t findLanguage(const MessageSource& source, std::uint16_t number);

/// Returns a file for a language, which need not be one of the source: then nothing is translated yet.
/// Messages without a text in the reference language have that of their first language.
PoFile exportPo(const MessageSource& source, std::size_t reference, std::uint16_t language);

/// Adds to a file what an older one of the same language has and a source cannot have: comments of the
/// translator, fuzzy and new texts, fields of the header, and, as obsolete, entries without message. An entry
/// whose msgid has changed since, but not its msgstr, becomes fuzzy.
void mergePo(PoFile& po, const PoFile& older);

/// Reports what keeps an older file from being merged: another language, and entries of the same context.
void checkOlderPo(const MessageSource& source, const PoFile& older, std::uint16_t language,
                  Diagnostics& diagnostics);

/// Returns the LANGID of a file by its header, 0 if it has none that is known. Reports a field that should
/// have the number, but does not.
std::uint16_t languageOfPo(const MessageSource& source, const PoFile& po, Diagnostics& diagnostics);

struct PoImport {
  std::size_t reference = 0;
  std::uint16_t language = 0;
  bool usesFuzzy = false;
};

/// Puts the texts of a file into a source, which gets the language if it does not have it. An entry without
/// text or, unless asked for, a fuzzy one leaves the text of the source as it is; so does one that is
/// reported: without message, repeated, with a text that a message cannot have, or for another text of the
/// reference language. The entries may come from several files: then contexts are repeated only if their
/// texts differ. Returns whether the source has changed.
bool importPo(MessageSource& source, const PoFile& po, const PoImport& options, Diagnostics& diagnostics);

}  // namespace vel::velmsg
