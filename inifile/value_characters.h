// Decodes escapes and character literals in values, and converts a value to the type that the caller wants.
#pragma once

#include "inifile/text_rules.h"

namespace vel::inifile {

/// Decodes the escape after a backslash, or a character literal from its opening quote on. Consumes it from
/// the span, never beyond its end, and returns the character.
char readEscape(Span& text) noexcept;
char readQuotedCharacter(Span& text) noexcept;

/// Convert the text of a value. Numbers have 32 bits on every system and saturate; 0 when there is none.
/// Texts are not copied.
void convert(const char* text, const char*& value) noexcept;
void convert(const char* text, int& value) noexcept;
void convert(const char* text, long& value) noexcept;
void convert(const char* text, unsigned int& value) noexcept;
void convert(const char* text, unsigned long& value) noexcept;
void convert(const char* text, char& value) noexcept;
void convert(const char* text, bool& value) noexcept;

}  // namespace vel::inifile
