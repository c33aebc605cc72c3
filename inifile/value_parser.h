// Parses the value of an option line or a continuation line.
#pragma once

#include "inifile/option_text.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

/// The place of a value in its line, for the editor.
struct ValuePlace {
  Span raw;          ///< the value as written, without white space around it
  const char* stop;  ///< the ";" before the comment, or the end of the line
};

/// Appends the value in `text` to the option's value and sets the comment, to "" if the line does not contain
/// one. `text` is what follows "=", or a whole continuation line.
ValuePlace parseValue(Span text, OptionText& option);

}  // namespace vel::inifile
