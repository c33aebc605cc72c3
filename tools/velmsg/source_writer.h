// Writes message sources.
#pragma once

#include <string>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// Returns a source as one file, in UTF-8 without a byte order mark and with "\n" for line breaks. Reading it
/// gives the same source, except for positions, and writing that gives the same bytes. The statements have an
/// order and a layout of their own, whatever the file looked like.
///
/// If the messages of several files are written, one that has no severity or facility although an earlier one
/// has gets a name for the number 0.
std::string writeMessageSource(const MessageSource& source);

/// Returns the statement that declares a language, with its line break.
std::string languageStatement(const SourceLanguage& language);

}  // namespace vel::velmsg
