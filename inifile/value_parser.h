// Reads the value of an option line or a continuation line.
#pragma once

#include "inifile/option_text.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

/// Where a value stands in its line.
struct ValuePlace {
  Span raw;          ///< as it is written, without white space around it
  const char* stop;  ///< the ";" before the comment, or the end of the line
};

/// Adds the value in `text`, what follows "=" or a continuation line, and sets the comment.
ValuePlace parseValue(Span text, OptionText& option);

}  // namespace vel::inifile
