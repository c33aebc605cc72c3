#include "base/usage_text.h"

#include <ostream>
#include <string_view>

namespace vel {
namespace {

/// Takes the next line off `text`; false when that was the last one.
bool consumeLine(std::string_view& text, std::string_view& line) {
  const std::size_t end = text.find('\n');
  line = text.substr(0, end);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  if (end == std::string_view::npos) return false;
  text.remove_prefix(end + 1);
  return true;
}

bool isTagged(std::string_view line) {
  return line.find('!') != std::string_view::npos;
}

void writeLine(std::ostream& stream, std::string_view line, TextKind kind) {
  if (!line.empty() && line.front() == '@') return;
  if (kind == TextKind::Help) {
    stream << line;
    return;
  }
  for (const char c : line)
    if (c != '!' && isShownInUsage(c)) stream.put(c);
}

}  // namespace

void writeFill(std::ostream& stream, std::size_t count, char c) {
  for (; count > 0; --count) stream.put(c);
}

void writeText(std::ostream& stream, const char* text, TextKind kind, std::size_t indentation) {
  std::string_view rest(text);
  std::string_view line;
  bool first = true;
  for (bool more = true; more;) {
    more = consumeLine(rest, line);
    // A "!" anywhere in a line hides all of it.
    if (kind == TextKind::UsageWithoutTaggedLines && isTagged(line)) continue;
    if (!first) {
      stream.put('\n');
      if (!line.empty() && line.front() != '@') writeFill(stream, indentation, ' ');
    }
    first = false;
    writeLine(stream, line, kind);
  }
}

}  // namespace vel
