// Finds the lines of sections and options in a text, by the same rules as the parser.
#pragma once

#include <span>

#include "foundation/allocator.h"
#include "inifile/line_source.h"
#include "inifile/option_text.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

/// A line that belongs to an option. All spans are in the scanned text.
struct ValueLine {
  Span whole;  ///< with the line break
  Span value;  ///< as written, without white space around it
  bool hasComment;
  bool continues;  ///< a continuation line of the option before
};

struct SectionLayout {
  /// With its line break.
  Span header{nullptr, nullptr};
  /// The end of the last line that is neither blank nor a comment.
  const char* contentEnd = nullptr;
  /// The text between the name and the value of the last option; null in a section without options.
  Span separator{nullptr, nullptr};
  /// The lines of all options in their order, each followed by its continuation lines.
  Vector<ValueLine> lines;
};

/// Removes the lines of the first option from `lines` and returns them. There must be one.
std::span<const ValueLine> consumeOptionLines(std::span<const ValueLine>& lines) noexcept;

/// Iterates over the sections, and over the lines of their options, in the order of the model.
class SectionScanner {
 public:
  /// `text` must outlive the scanner and its layouts.
  SectionScanner(Span text, bool allowContinuation)
      : lines_(text.begin, text.length(), '\n', LineSource::Bytes::Text),
        allowContinuation_(allowContinuation) {
    readToHeader();
  }

  /// Moves to the next section. Returns false after the last one.
  bool next();
  const SectionLayout& layout() const noexcept { return layout_; }

 private:
  void readToHeader();
  void scanLine(Span line, Span whole);
  void scanOption(Span line, Span whole);
  void scanIndented(Span line, Span whole);

  LineSource lines_;
  bool allowContinuation_;
  bool isOpen_ = false;  ///< whether there is an option that a continuation line would extend
  SectionLayout layout_;
  Span nextHeader_{nullptr, nullptr};
};

}  // namespace vel::inifile
