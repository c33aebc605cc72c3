// Finds the places of a section and an option.
#include "inifile/section_layout.h"

#include <algorithm>

#include "foundation/ascii.h"
#include "inifile/ini_parser.h"

namespace vel::inifile {

namespace {

class LayoutScanner {
 public:
  LayoutScanner(const char* section, const char* option, bool allowContinuation)
      : section_(section), option_(option), allowContinuation_(allowContinuation) {}

  SectionLayout scan(Span text) {
    LineSource lines(text.begin, text.length(), '\n', LineSource::Bytes::Text);
    while (!lines.isAtEnd()) {
      const char* const begin = lines.position();
      const Span line = lines.next();
      if (!take(line, {begin, lines.position()})) break;
    }
    return layout_;
  }

 private:
  /// False behind the section.
  bool take(Span line, Span whole) {
    const LineKind kind = kindOf(line);
    if (kind == LineKind::Empty) return true;
    const Span header = kind == LineKind::Header ? nameInHeader(line) : Span{nullptr, nullptr};
    if (header.begin != nullptr) return takeHeader(header, whole);
    if (!layout_.isFound()) return true;
    layout_.contentEnd = whole.end;
    if (kind == LineKind::Option) takeOption(line, whole);
    if (kind == LineKind::Indented) takeIndented(line, whole);
    return true;
  }

  bool takeHeader(Span name, Span whole) {
    if (layout_.isFound()) return false;
    char cut[VelClIniFileSection::kMaxNameLength + 1] = {};
    std::copy(name.begin, name.begin + std::min(name.length(), sizeof cut - 1), cut);
    if (!equalsIgnoringAsciiCase(cut, section_)) return true;
    layout_.header = whole;
    layout_.contentEnd = whole.end;
    return true;
  }

  void takeOption(Span line, Span whole) {
    const char* const equalSign = line.find('=');
    if (equalSign == nullptr) return;
    OptionText text = OptionText::named({line.begin, equalSign});
    const ValuePlace place = parseValue({equalSign + 1, line.end}, text);
    const char* nameEnd = equalSign;
    while (nameEnd != line.begin && isSpace(nameEnd[-1])) --nameEnd;
    layout_.separator = {nameEnd, place.raw.begin};
    isOpen_ = option_ != nullptr && layout_.option.empty() && equalsIgnoringAsciiCase(text.data(), option_);
    if (isOpen_) layout_.option.push_back({whole, place.raw, place.stop != line.end});
  }

  void takeIndented(Span line, Span whole) {
    isOpen_ = isOpen_ && allowContinuation_;
    if (!isOpen_) return;
    OptionText text(Span{line.begin, line.begin});
    const ValuePlace place = parseValue(line, text);
    layout_.option.push_back({whole, place.raw, place.stop != line.end});
  }

  const char* section_;
  const char* option_;
  bool allowContinuation_;
  bool isOpen_ = false;  ///< whether a continuation line belongs to the option
  SectionLayout layout_;
};

}  // namespace

SectionLayout findLayout(Span text, const char* section, const char* option, bool allowContinuation) {
  return LayoutScanner(section, option, allowContinuation).scan(text);
}

}  // namespace vel::inifile
