// Parses lines into a model, each line by the way it begins:
//
//   [server]                a header: opens a section
//   port = 80 ; old         an option: name, value and comment
//     80 ; now 8080         a continuation line, after white space: extends the value before it
//   ; a note                a comment line, skipped like a blank line
//
// The value is then 8080 and its comment "now 8080". Cutting bytes into lines is line_source.cpp's work,
// parsing values value_parser.cpp's and storing records model.cpp's.
#include "inifile/ini_parser.h"

#include <algorithm>
#include <cstring>

#include "inifile/option_text.h"
#include "inifile/value_parser.h"

namespace vel::inifile {

LineKind kindOf(Span line) noexcept {
  Span text = line;
  text.skipSpace();
  if (text.isEmpty() || text.first() == ';') return LineKind::Empty;
  if (line.first() == '[') return LineKind::Header;
  return text.begin != line.begin ? LineKind::Indented : LineKind::Option;
}

Span nameInHeader(Span line) noexcept {
  const char* const end = line.find(']');
  return end != nullptr ? Span{line.begin + 1, end} : Span{nullptr, nullptr};
}

bool Parser::parse(LineSource& lines) {
  struct PositionReset {
    Parser& parser;
    explicit PositionReset(Parser& user) noexcept : parser(user) { parser.resetPosition(); }
    ~PositionReset() { parser.resetPosition(); }
  };
  // At the start, so that the lines do not continue what an earlier load left open; at the end also when the
  // handler or the memory manager throws.
  const PositionReset atStartAndEnd(*this);
  while (!lines.isAtEnd()) {
    const Span line = lines.next();
    ++file_.lineCount_;
    if (!parseLine(line)) return false;
  }
  return true;
}

void Parser::resetPosition() noexcept {
  file_.currentSection_ = nullptr;
  model_.openOption = nullptr;
}

bool Parser::parseLine(Span line) {
  switch (kindOf(line)) {
    case LineKind::Empty:
      return true;
    case LineKind::Header:
      return parseHeader(line);
    case LineKind::Indented:
      return file_.currentSection_ == nullptr || parseContinuation(line);
    case LineKind::Option:
      break;
  }
  return file_.currentSection_ == nullptr || parseOption(line);
}

bool Parser::parseHeader(Span line) {
  const Span name = nameInHeader(line);
  // Intentional: after a header without "]" the section before it stays the current one, and the options that
  // follow are added to that.
  if (name.begin == nullptr) return report(INIFILE_INVAL_SECTION);
  VelClIniFileSection* section = nullptr;
  if (!keepDuplicateSections_) {
    // The search needs the name as the model stores it: a name that is longer than a record holds would never
    // be found, and every load would append another section.
    char cut[VelClIniFileSection::kMaxNameLength + 1] = {};
    std::copy(name.begin, name.begin + std::min(name.length(), sizeof cut - 1), cut);
    section = model_.findSection(cut);
  }
  // A continuation line does not extend an option of another section.
  model_.openOption = nullptr;
  file_.currentSection_ = section != nullptr ? section : model_.appendSection(name);
  return true;
}

bool Parser::parseOption(Span line) {
  const char* const equalSign = line.find('=');
  // Intentional: continuation lines after a line without "=" still extend the option before that line.
  if (equalSign == nullptr) return report(INIFILE_INVAL_OPTION);
  OptionText text = OptionText::named({line.begin, equalSign});
  parseValue({equalSign + 1, line.end}, text);
  model_.openOption = model_.appendOption(*file_.currentSection_, text);
  return true;
}

bool Parser::parseContinuation(Span line) {
  VelClIniFileOption* const option = model_.openOption;
  if (!allowContinuation_ || option == nullptr) {
    model_.openOption = nullptr;
    return report(INIFILE_INVAL_WHITESPACE);
  }
  // The option is rebuilt in a buffer, because its record may be too small for the longer value.
  OptionText text({option->getName(), option->getName() + std::strlen(option->getName())});
  text.addToValue(option->getValue(), std::strlen(option->getValue()));
  // Intentional: the last line decides about the comment, so a continuation line without one removes it.
  parseValue(line, text);
  model_.replaceText(*option, text);
  return true;
}

bool Parser::report(VelEnErrorId error) const {
  // Without a handler all syntax errors are ignored.
  if (file_.errorHandler_ == nullptr) return true;
  const _VelStError reported(error, VelEnErrorClass::USER_DATA_ERROR);
  return file_.errorHandler_(reported, file_.lineCount_, file_.errorHandlerData_);
}

}  // namespace vel::inifile
