// A text under change: what is replaced, removed and added, told in the order in which it stands in the text,
// makes the new text.
#pragma once

#include "foundation/allocator.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

class TextRewriter {
 public:
  explicit TextRewriter(Span text) : text_(text), kept_(text.begin) {}

  void replace(Span old, const String& piece);
  void remove(Span old) { keepUpTo(old.begin), kept_ = old.end; }
  /// At the begin of a line, or behind a last line without end: that gets one, and the new line has none
  /// then.
  void addLine(const char* at, const String& line);
  /// At the end, behind an empty line if anything is there.
  void addHeader(const char* section);
  /// The whole text.
  String finish();

 private:
  void keepUpTo(const char* end);
  const char* lineEnd() const noexcept;

  Span text_;
  const char* kept_;  ///< behind what is in the new text, or replaced
  String changed_;
};

}  // namespace vel::inifile
