// Makes a text with changes.
#include "inifile/text_rewriter.h"

#include <utility>

namespace vel::inifile {

void TextRewriter::keepUpTo(const char* end) {
  if (end != kept_) changed_.append(kept_, end);
  kept_ = end;
}

void TextRewriter::replace(Span old, const String& piece) {
  remove(old);
  changed_ += piece;
}

/// The first line's, or "\n".
const char* TextRewriter::lineEnd() const noexcept {
  const char* const end = text_.find('\n');
  return end != nullptr && end != text_.begin && end[-1] == '\r' ? "\r\n" : "\n";
}

void TextRewriter::addLine(const char* at, const String& line) {
  const bool isLineStart = at == text_.begin || at[-1] == '\n';
  keepUpTo(at);
  if (!isLineStart) changed_ += lineEnd();
  changed_ += line;
  if (isLineStart) changed_ += lineEnd();
}

void TextRewriter::addHeader(const char* section) {
  if (!text_.isEmpty() || !changed_.empty()) addLine(text_.end, "");
  String header = "[";
  addLine(text_.end, header.append(section).append("]"));
}

String TextRewriter::finish() {
  keepUpTo(text_.end);
  return std::move(changed_);
}

}  // namespace vel::inifile
