// Writes usage and help strings line by line. The marks in them instruct the check of a command line, which
// interprets them itself; here they are only hidden.
#include "base/usage_text.h"

#include <ostream>
#include <string_view>

namespace vel {
namespace {

/// Consumes the next line of `text`, without its line break; returns false if that was the last one.
bool consumeLine(std::string_view& text, std::string_view& line) {
  const std::size_t end = text.find('\n');
  line = text.substr(0, end);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  if (end == std::string_view::npos) return false;
  text.remove_prefix(end + 1);
  return true;
}

/// A "!" anywhere in a line makes it a tagged line.
bool isTagged(std::string_view line) {
  return line.find('!') != std::string_view::npos;
}

void writeLine(std::ostream& stream, std::string_view line, TextKind kind) {
  // The line break before the line has been written already, so the line is shown empty.
  if (!line.empty() && line.front() == '@') return;
  if (kind == TextKind::Help) {
    stream << line;
    return;
  }
  for (const char c : line)
    // Only the marks are hidden; the names and blanks between them stay in place.
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
    // The whole line is hidden, not just what follows the "!".
    if (kind == TextKind::UsageWithoutTaggedLines && isTagged(line)) continue;
    // Line breaks are written between lines, so that hidden lines leave no gap and nothing follows the last.
    if (!first) {
      stream.put('\n');
      if (!line.empty() && line.front() != '@') writeFill(stream, indentation, ' ');
    }
    first = false;
    writeLine(stream, line, kind);
  }
}

}  // namespace vel
