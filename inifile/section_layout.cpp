// Finds the places of sections and options.
#include "inifile/section_layout.h"

#include "inifile/ini_parser.h"
#include "inifile/value_parser.h"

namespace vel::inifile {

namespace {

/// Behind the first line break of the text, or at its end.
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
    // Behind a line that is too long nothing is read, but it ends like any other.
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
  // Lines before the first header are nobody's.
  if (kind == LineKind::Empty || layout_.header.begin == nullptr) return;
  layout_.contentEnd = whole.end;
  if (kind == LineKind::Option) scanOption(line, whole);
  if (kind == LineKind::Indented) scanIndented(line, whole);
}

void SectionScanner::scanOption(Span line, Span whole) {
  const char* const equalSign = line.find('=');
  if (equalSign == nullptr) return;
  OptionText text(Span{line.begin, line.begin});
  const ValuePlace place = parseValue({equalSign + 1, line.end}, text);
  const char* nameEnd = equalSign;
  while (nameEnd != line.begin && isSpace(nameEnd[-1])) --nameEnd;
  layout_.separator = {nameEnd, place.raw.begin};
  isOpen_ = true;
  layout_.lines.push_back({whole, place.raw, place.stop != line.end, false});
}

void SectionScanner::scanIndented(Span line, Span whole) {
  isOpen_ = isOpen_ && allowContinuation_;
  if (!isOpen_) return;
  OptionText text(Span{line.begin, line.begin});
  const ValuePlace place = parseValue(line, text);
  layout_.lines.push_back({whole, place.raw, place.stop != line.end, true});
}

}  // namespace vel::inifile
