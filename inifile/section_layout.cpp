// Finds the lines of sections and options in a text. A model does not store positions, which would burden
// programs that only read; the editor determines them when it needs them.
//
// The scanner uses the line source and the value parser of the load, so both see the same lines and values:
// the scanner returns sections and options in the order of the model, so they can be matched by counting. A
// section ends with its last line of content, because blank lines and comments after that more likely belong
// to the next section.
#include "inifile/section_layout.h"

#include "inifile/ini_parser.h"
#include "inifile/value_parser.h"

namespace vel::inifile {

namespace {

/// Returns the end of the first line, after its line break, or the end of the text.
const char* endOfLine(Span text) noexcept {
  const char* const delimiter = text.find('\n');
  return delimiter != nullptr ? delimiter + 1 : text.end;
}

}  // namespace

std::span<const ValueLine> consumeOptionLines(std::span<const ValueLine>& lines) noexcept {
  std::size_t count = 1;
  while (count < lines.size() && lines[count].continues) ++count;
  const auto consumed = lines.first(count);
  lines = lines.subspan(count);
  return consumed;
}

bool SectionScanner::next() {
  if (nextHeader_.begin == nullptr) return false;
  layout_.header = nextHeader_;
  layout_.contentEnd = nextHeader_.end;
  layout_.separator = {nullptr, nullptr};
  layout_.lines.clear();
  isOpen_ = false;
  readToHeader();
  return true;
}

void SectionScanner::readToHeader() {
  nextHeader_ = {nullptr, nullptr};
  while (!lines_.isAtEnd()) {
    const char* const begin = lines_.position();
    const Span line = lines_.next();
    // The line source stops within a line that is too long and moves to the end of the text. The rest of that
    // line still belongs to it.
    const char* const end = lines_.isAtEnd() ? endOfLine({begin, lines_.position()}) : lines_.position();
    const Span whole{begin, end};
    if (kindOf(line) == LineKind::Header && nameInHeader(line).begin != nullptr) {
      nextHeader_ = whole;
      return;
    }
    scanLine(line, whole);
  }
}

void SectionScanner::scanLine(Span line, Span whole) {
  const LineKind kind = kindOf(line);
  // Lines before the first header belong to no section.
  if (kind == LineKind::Empty || layout_.header.begin == nullptr) return;
  layout_.contentEnd = whole.end;
  if (kind == LineKind::Option) scanOption(line, whole);
  if (kind == LineKind::Indented) scanIndented(line, whole);
}

void SectionScanner::scanOption(Span line, Span whole) {
  const char* const equalSign = line.find('=');
  if (equalSign == nullptr) return;
  // Only the place of the value matters here; its text is parsed into a buffer that is dropped.
  OptionText text(Span{line.begin, line.begin});
  const ValuePlace place = parseValue({equalSign + 1, line.end}, text);
  const char* nameEnd = equalSign;
  while (nameEnd != line.begin && isSpace(nameEnd[-1])) --nameEnd;
  layout_.separator = {nameEnd, place.raw.begin};
  isOpen_ = true;
  layout_.lines.push_back({whole, place.raw, place.stop != line.end, false});
}

void SectionScanner::scanIndented(Span line, Span whole) {
  // As in the parser, the first refused continuation line also closes the option for the lines after it.
  isOpen_ = isOpen_ && allowContinuation_;
  if (!isOpen_) return;
  OptionText text(Span{line.begin, line.begin});
  const ValuePlace place = parseValue(line, text);
  layout_.lines.push_back({whole, place.raw, place.stop != line.end, true});
}

}  // namespace vel::inifile
