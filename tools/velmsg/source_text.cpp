#include "tools/velmsg/source_text.h"

#include <algorithm>

#include "messages/resource_escape.h"
#include "vel_include/vel_messages.h"

namespace vel::velmsg {
namespace {

using messages::ResourceEscape;
using messages::TextReader;
using Offset = std::optional<std::size_t>;

class TextScan {
 public:
  explicit TextScan(std::string_view text) : text_(text) {}

  SourceTextFacts run() {
    countUnits();
    const auto* const control = std::ranges::find_if(text_, isControlCharacter);
    if (control != text_.end()) facts_.control = static_cast<std::size_t>(control - text_.begin());
    while (at_ < text_.size() && !facts_.hasEnd && !facts_.malformed) {
      const std::size_t percent = std::min(text_.find('%', at_), text_.size());
      countPlain(text_.substr(at_, percent - at_));
      at_ = percent;
      if (at_ < text_.size()) readEscape();
    }
    return facts_;
  }

 private:
  void countUnits() {
    for (const char c : text_) {
      const auto byte = static_cast<unsigned char>(c);
      // A line break has two units, and so has a character of four bytes.
      facts_.storedUnits += (byte & 0xC0) == 0x80 ? 0 : byte >= 0xF0 || c == '\n' ? 2 : 1;
    }
  }
  void countPlain(std::string_view text) {
    facts_.length += text.size() + static_cast<std::size_t>(std::ranges::count(text, '\n'));
  }
  void readEscape();
  void readInsert(const ResourceEscape& escape);
  void readCharacter();
  bool isBlankAtEdge();
  void note(Offset& first) const {
    if (!first) first = at_;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t edge_ = 0;  ///< the end of the blanks at an edge of a line
  SourceTextFacts facts_;
};

void TextScan::readEscape() {
  TextReader reader(text_.data() + at_ + 1, text_.size() - at_ - 1);
  const ResourceEscape escape = messages::readResourceEscape(reader);
  const auto end = static_cast<std::size_t>(reader.data() - text_.data());
  switch (escape.kind) {
    case ResourceEscape::Kind::Malformed:
      note(facts_.malformed);
      break;
    case ResourceEscape::Kind::End:
      facts_.hasEnd = true;
      at_ = std::min(text_.find_first_not_of(" \t\r\n", end), text_.size());
      if (at_ != text_.size()) note(facts_.afterEnd);
      break;
    case ResourceEscape::Kind::LineBreak:
      facts_.length += 2;
      break;
    case ResourceEscape::Kind::Character:
      readCharacter();
      break;
    case ResourceEscape::Kind::Insert:
      readInsert(escape);
  }
  if (!facts_.hasEnd) at_ = end;
}

/// Returns the conversion of a print style: what is left without flags, width and precision.
std::string conversionOf(const ResourceEscape& escape) {
  if (escape.isText) return "s";
  const std::string_view style(escape.styleText.data(), escape.styleText.size());
  return std::string(style.substr(std::min(style.find_first_not_of("-+ #0123456789."), style.size())));
}

void TextScan::readInsert(const ResourceEscape& escape) {
  facts_.inserts[escape.number].insert(conversionOf(escape));
  // Nobody has so much memory, but the sum must not overflow.
  facts_.length += std::min<std::size_t>(escape.style.width, VEL_MAX_MESSAGE_LENGTH + 1);
  if (!escape.isText) note(facts_.number);
  if (escape.number > VEL_MAX_MESSAGE_VARIABLES) note(facts_.aboveMaximum);
}

/// The letters are escapes of their own, and "%.", "%!" and "%%" are what they are meant to be.
void TextScan::readCharacter() {
  ++facts_.length;
  const char c = text_[at_ + 1];
  const bool isKnown = std::string_view("%.!rtb").find(c) != std::string_view::npos;
  // Only the first one is searched for, so that no line is scanned twice.
  if (facts_.unknown || isKnown || (c == ' ' && isBlankAtEdge())) return;
  note(facts_.unknown);
}

/// "% " is a blank that editors keep at the beginning or the end of a line. Anywhere else it looks like a
/// percent sign that is not shown, as in "100% sure".
bool TextScan::isBlankAtEdge() {
  const bool isAtBegin = at_ == 0 || text_[at_ - 1] == '\n';
  if (at_ < edge_ || isAtBegin || at_ == edge_) {
    edge_ = std::max(edge_, at_ + 2);
    return true;
  }
  const std::size_t end = std::min(text_.find_first_not_of(" %", at_), text_.size());
  const bool isEscape =
      end < text_.size() && (text_[end] == '0' || text_[end] == 'n') && text_[end - 1] == '%';
  if (end < text_.size() && text_[end] != '\n' && !isEscape) return false;
  edge_ = end;
  return true;
}

}  // namespace

SourceTextFacts readSourceText(std::string_view text) {
  return TextScan(text).run();
}

std::string insertsText(const SourceInserts& inserts) {
  std::string text;
  for (const auto& [number, conversions] : inserts) {
    for (const std::string& conversion : conversions) {
      text += (text.empty() ? "%" : " %") + std::to_string(number);
      if (conversion != "s") text += '!' + conversion + '!';
    }
  }
  return text.empty() ? "-" : text;
}

}  // namespace vel::velmsg
