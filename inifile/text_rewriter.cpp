// Builds the new text from the old one, front to back. `kept_` is the cursor in the old text: each change
// first copies what lies before it. So a change costs one copy of the text, however many lines it concerns.
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

/// Returns the line break that added lines get. The first line decides, so that a file with "\r\n" is not
/// mixed; a text without a line break gets "\n".
const char* TextRewriter::lineEnd() const noexcept {
  const char* const end = text_.find('\n');
  return end != nullptr && end != text_.begin && end[-1] == '\r' ? "\r\n" : "\n";
}

void TextRewriter::addLine(const char* at, const String& line) {
  // A text that ends without a line break still does so afterwards: the break moves before the new line.
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
