// Where sections and options stand in a text. Lines are told apart as the parser does it.
#pragma once

#include <span>

#include "foundation/allocator.h"
#include "inifile/line_source.h"
#include "inifile/option_text.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

/// A line with its end, and the value in it.
struct ValueLine {
  Span whole;
  Span value;
  bool hasComment;
  bool continues;  ///< the option before
};

struct SectionLayout {
  Span header{nullptr, nullptr};     ///< with the line's end
  const char* contentEnd = nullptr;  ///< behind the last line that is neither blank nor a comment
  Span separator{nullptr,
                 nullptr};  ///< what stands between name and value of the last option, if there is any
  Vector<ValueLine> lines;  ///< all options', each with the lines that continue it
};

/// Takes the lines of one option from the front: its own, and those that continue it.
std::span<const ValueLine> consumeOptionLines(std::span<const ValueLine>& lines) noexcept;

/// Gives the sections one by one, in the order in which a model has them, and so do their options stand.
class SectionScanner {
 public:
  /// The text must live as long as the scanner and its layouts.
  SectionScanner(Span text, bool allowContinuation)
      : lines_(text.begin, text.length(), '\n', LineSource::Bytes::Text),
        allowContinuation_(allowContinuation) {
    readToHeader();
  }

  /// False behind the last one.
  bool next();
  const SectionLayout& layout() const noexcept { return layout_; }

 private:
  void readToHeader();
  void scanLine(Span line, Span whole);
  void scanOption(Span line, Span whole);
  void scanIndented(Span line, Span whole);

  LineSource lines_;
  bool allowContinuation_;
  bool isOpen_ = false;  ///< whether there is an option that a line could continue
  SectionLayout layout_;
  Span nextHeader_{nullptr, nullptr};
};

}  // namespace vel::inifile
