// The texts of the tools in the user's language.
#pragma once

namespace vel::tools {

/// An English text and its German one in UTF-8. A null text ends a table.
struct Translation {
  const char* english;
  const char* german;
};

/// The table of the program, which translations.py generates.
extern const Translation kTranslations[];
/// Sets the table of the program, which is not copied. Until then, texts stay English.
void useTranslations(const Translation* table) noexcept;
/// Selects German if the messages of the library are German, so that messages are never in two languages.
/// `catalogLanguage` is the number of their language.
void chooseLanguage(unsigned int catalogLanguage);
/// Returns the text in the selected language, or `english` itself if there is no other. Valid as long as the
/// process; does not allocate.
const char* translated(const char* english) noexcept;

}  // namespace vel::tools
