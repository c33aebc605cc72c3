// Rewrites a text in one pass: everything that is not replaced, removed or added is copied. Changes must come
// in the order of their places in the text.
#pragma once

#include "foundation/allocator.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

class TextRewriter {
 public:
  /// `text` must outlive the rewriter, and so must the spans of it that are passed to the functions.
  explicit TextRewriter(Span text) : text_(text), kept_(text.begin) {}

  void replace(Span old, const String& piece);
  void remove(Span old) { keepUpTo(old.begin), kept_ = old.end; }
  /// Adds a line at the start of a line, or at the end of the text. If the last line of the text has no line
  /// break, the break is added before the new line, which then ends without one, too.
  void addLine(const char* at, const String& line);
  /// Adds a header at the end, after an empty line unless it is the first line.
  void addHeader(const char* section);
  /// Copies the rest and returns the new text.
  String finish();

 private:
  void keepUpTo(const char* end);
  const char* lineEnd() const noexcept;

  Span text_;
  const char* kept_;  ///< up to here the old text has been copied, replaced or removed
  String changed_;
};

}  // namespace vel::inifile
