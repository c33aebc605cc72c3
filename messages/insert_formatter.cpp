// Expands inserts in message texts, in the two notations that insert_formatter.h documents. There is
// a class for each: it consumes the text from left to right with a TextReader and writes with a TextWriter,
// which never leaves the caller's buffer. Runs of characters without an escape are copied eight at a time.
//
// Texts are untrusted: catalogs are read from files. An insert is copied but never expanded itself, so the
// output cannot grow out of hand, and the text is consumed once, so the time is linear.

#include "messages/insert_formatter.h"

#include <algorithm>

#include "messages/resource_escape.h"
#include "messages/text_reader_writer.h"

namespace vel::messages {
namespace {

constexpr const char* kMissing = "???";
constexpr std::uint32_t kInsertCount = 10;

/// Expands texts of catalog libraries. A malformed text, or a result that does not fit, yields nothing.
class ResourceTextExpander {
 public:
  ResourceTextExpander(TextReader text, const char* const* inserts, TextWriter out) noexcept
      : text_(text), inserts_(inserts), out_(out) {}

  FormatResult expand() noexcept {
    while (!finished_ && !malformed_ && !out_.overflowed()) {
      out_.copyUntilAny(text_, StopSet<'%', '\r', '\n'>{});
      if (text_.atEnd() || out_.overflowed()) break;
      step(text_.read());
    }
    const bool complete = !malformed_ && !out_.overflowed();
    return {complete, complete ? out_.length() : 0};
  }

 private:
  void step(char c) noexcept {
    if (c == '%') return escape();
    // CR LF is one line break, and so are CR and LF alone.
    if (c == '\r') text_.consumeIf('\n');
    out_.lineBreak();
  }

  void escape() noexcept {
    const ResourceEscape escape = readResourceEscape(text_);
    switch (escape.kind) {
      case ResourceEscape::Kind::Malformed:
        malformed_ = true;
        break;
      case ResourceEscape::Kind::End:
        finished_ = true;
        break;
      case ResourceEscape::Kind::LineBreak:
        out_.lineBreak();
        break;
      case ResourceEscape::Kind::Character:
        out_.put(escape.character);
        break;
      case ResourceEscape::Kind::Insert:
        insert(escape);
    }
  }

  void insert(const ResourceEscape& escape) noexcept {
    const bool known =
        escape.isText && escape.number <= kInsertCount && inserts_[escape.number - 1] != nullptr;
    const char* const value = known ? inserts_[escape.number - 1] : kMissing;
    escape.hasStyle ? putFormatted(value, escape.style) : putAll(value);
  }

  void putAll(const char* value) noexcept {
    // Inserts may be very long. One character more than there is room
    // for is enough to see that it does not fit.
    out_.appendText(value, out_.room() + 1);
  }

  void putFormatted(const char* value, const InsertStyle& style) noexcept {
    const std::size_t length = boundedLength(value, std::min(style.precision, out_.room() + 1));
    const std::size_t padding = style.width > length ? style.width - length : 0;
    if (!style.leftAligned) out_.repeat(style.zeroFilled ? '0' : ' ', padding);
    out_.append(value, length);
    if (style.leftAligned) out_.repeat(' ', padding);
  }

  TextReader text_;
  const char* const* inserts_;
  TextWriter out_;
  bool finished_ = false;
  bool malformed_ = false;
};

/// Expands texts of string tables. Nothing is malformed here; a result that does not fit is cut.
class TableTextExpander {
 public:
  TableTextExpander(TextReader text, const char* const* inserts, std::uint32_t insertCount,
                    TextWriter out) noexcept
      : text_(text), inserts_(inserts), insertCount_(insertCount), out_(out) {}

  std::size_t expand() noexcept {
    while (out_.room() > 0) {
      out_.copyUntilAny(text_, StopSet<'%'>{});
      if (text_.atEnd()) break;
      text_.read();
      escape();
    }
    return out_.length();
  }

 private:
  void escape() noexcept {
    // Intentional: a missing number counts as 0, which is not an insert; blanks and signs are not part of
    // one.
    if (text_.consumeIf('%'))
      out_.put('%');
    else
      putInsert(text_.parseNumber());
  }

  void putInsert(std::size_t number) noexcept {
    const bool known = number >= 1 && number <= insertCount_ && inserts_[number - 1] != nullptr;
    const char* value = known ? inserts_[number - 1] : kMissing;
    out_.appendText(value, out_.room());
  }

  TextReader text_;
  const char* const* inserts_;
  std::uint32_t insertCount_;
  TextWriter out_;
};

}  // namespace

FormatResult expandResourceText(const char* text, std::size_t length, const char* const inserts[10],
                                char* out, std::size_t capacity) noexcept {
  if (capacity == 0) return {false, 0};
  const TextReader reader(text, length);
  const FormatResult result = ResourceTextExpander(reader, inserts, TextWriter(out, capacity - 1)).expand();
  out[result.length] = '\0';
  return result;
}

std::size_t expandTableText(const char* text, const char* const* inserts, std::uint32_t insertCount,
                            char* out, std::size_t maxLength) noexcept {
  const std::size_t length =
      TableTextExpander(TextReader(text, std::strlen(text)), inserts, insertCount, TextWriter(out, maxLength))
          .expand();
  out[length] = '\0';
  return length;
}

}  // namespace vel::messages
