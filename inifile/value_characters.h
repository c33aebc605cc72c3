// Escapes and character literals in values, and the conversion of a value's text to the caller's type.
#pragma once

#include "inifile/text_rules.h"

namespace vel::inifile {

/// The character behind a back-slash, and one between single quotes from the opening quote on; the span moves
/// on.
char readEscape(Span& text) noexcept;
char readQuotedCharacter(Span& text) noexcept;

/// A value's text as what a question asks for.
void convert(const char* text, const char*& value) noexcept;
void convert(const char* text, int& value) noexcept;
void convert(const char* text, long& value) noexcept;
void convert(const char* text, unsigned int& value) noexcept;
void convert(const char* text, unsigned long& value) noexcept;
void convert(const char* text, char& value) noexcept;
void convert(const char* text, bool& value) noexcept;

}  // namespace vel::inifile
