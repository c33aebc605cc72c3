// Expands inserts in message texts, in the two notations that insert_formatter.h documents. There is
// a class for each: it consumes the text from left to right with a TextReader and writes with a TextWriter,
// which never leaves the caller's buffer. Runs of characters without an escape are copied eight at a time.
//
// Texts are untrusted: catalogs are read from files. An insert is copied but never expanded itself, so the
// output cannot grow out of hand, and the text is consumed once, so the time is linear.

#include "messages/insert_formatter.h"

#include <algorithm>
#include <limits>

#include "messages/text_reader_writer.h"

namespace vel::messages {
namespace {

constexpr const char* kMissing = "???";
constexpr std::uint32_t kInsertCount = 10;
constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

/// The print style of an insert: "%1!-8.3s!" is left-aligned, with width 8 and precision 3.
struct InsertStyle {
  bool leftAligned = false;
  bool zeroFilled = false;
  std::size_t width = 0;
  std::size_t precision = kUnlimited;
};

/// Consumes one of printf's flags. Returns false if no flag follows. Flags for numbers are accepted and
/// ignored.
bool parseFlag(TextReader& text, InsertStyle& style) noexcept {
  if (text.consumeIf('-')) return style.leftAligned = true;
  if (text.consumeIf('0')) return style.zeroFilled = true;
  return text.consumeIf('+') || text.consumeIf(' ') || text.consumeIf('#');
}

/// Parses the text between the "!" of a print style. Returns false for everything but a string conversion:
/// any other one would make printf read a number, or an address from which to read.
bool parseStyle(TextReader text, InsertStyle& style) noexcept {
  while (parseFlag(text, style)) {
  }
  style.width = text.parseNumber();
  if (text.consumeIf('.')) style.precision = text.parseNumber();
  text.consumeIf('h');
  return text.consumeIf('s') && text.atEnd();
}

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
    malformed_ = text_.atEnd();
    if (malformed_) return;
    const char c = text_.read();
    switch (c) {
      case '0':
        finished_ = true;
        break;
      case 'n':
        out_.lineBreak();
        break;
      case 'r':
        out_.put('\r');
        break;
      case 't':
        out_.put('\t');
        break;
      case 'b':
        out_.put(' ');
        break;
      default:
        if (isAsciiDigit(c)) return insert(c);
        out_.put(c);
    }
  }

  /// Expands an insert after its first digit, which is not 0: "%0" ends the text, also in "%01".
  void insert(char firstDigit) noexcept {
    auto number = appendDigit(std::uint32_t{0}, firstDigit);
    if (text_.atDigit()) number = appendDigit(number, text_.read());
    const bool known = number <= kInsertCount && inserts_[number - 1] != nullptr;
    const char* value = known ? inserts_[number - 1] : kMissing;

    if (!text_.consumeIf('!')) return putAll(value);
    InsertStyle style;
    if (!readStyle(style)) value = kMissing;
    if (!malformed_) putFormatted(value, style);
  }

  /// Consumes a print style and its second "!". Returns false when the insert cannot be shown in this style;
  /// sets malformed_ when the second "!" is missing.
  bool readStyle(InsertStyle& style) noexcept {
    TextReader part = text_;
    malformed_ = !text_.readUntil('!', part);
    if (!malformed_ && parseStyle(part, style)) return true;
    style = {};
    return false;
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
  const TextReader reader(text, boundedLength(text, length));
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
