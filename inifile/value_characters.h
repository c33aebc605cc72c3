// Decodes escapes and character literals in values, and converts a value to the type that the caller wants.
#pragma once

#include "inifile/text_rules.h"

namespace vel::inifile {

/// Decode the escape after a backslash, or a character literal from its opening quote on. They consume it
/// from the span, never beyond the span's end, and return the character.
char readEscape(Span& text) noexcept;
char readQuotedCharacter(Span& text) noexcept;

/// Convert the text of a value. Numbers have 32 bits on every system and saturate; a text without a number
/// gives 0. Texts are not copied.
void convert(const char* text, const char*& value) noexcept;
void convert(const char* text, int& value) noexcept;
void convert(const char* text, long& value) noexcept;
void convert(const char* text, unsigned int& value) noexcept;
void convert(const char* text, unsigned long& value) noexcept;
void convert(const char* text, char& value) noexcept;
void convert(const char* text, bool& value) noexcept;

}  // namespace vel::inifile
