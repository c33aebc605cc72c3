// Reads .po files line by line: comments, and keywords with strings. After a mistake it goes on with the next
// line, so that all of them are reported; the entry with the mistake is left out.
//
// The text of the file is UTF-8 here, but numeric escapes are bytes of the file's code page. A character may
// consist of escapes and plain ASCII characters, as "\203A" in Shift-JIS, so from an escaped byte of a string
// on everything that is ASCII is collected as bytes and then converted.
#include <algorithm>
#include <utility>

#include "base/ascii.h"
#include "base/digits.h"
#include "tools/velmsg/po_charset.h"
#include "tools/velmsg/po_file.h"
#include "tools/velmsg/source_encoding.h"
#include "tools/velmsg/texts.h"

namespace vel::velmsg {
namespace {

constexpr std::string_view kBlanks = " \t\v\f";

/// A cursor in one line, which counts the columns as far as they are needed.
class Line {
 public:
  Line(std::string_view text, SourcePosition position) : text_(text), position_(position) {}

  bool atEnd() const { return text_.empty(); }
  char peek() const { return atEnd() ? '\0' : text_[0]; }
  std::string_view rest() const { return text_; }
  const SourcePosition& position() const { return position_; }

  std::string_view take(std::size_t size) {
    const std::string_view taken = text_.substr(0, size);
    text_.remove_prefix(taken.size());
    const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    position_.column += static_cast<std::size_t>(std::ranges::count_if(taken, isFirstByte));
    return taken;
  }
  bool accept(std::string_view text) {
    if (!text_.starts_with(text)) return false;
    take(text.size());
    return true;
  }
  void skipBlanks() { take(std::min(text_.find_first_not_of(kBlanks), text_.size())); }
  std::string_view word() {
    const auto isWord = [](char c) { return isAsciiAlnum(c) || c == '_'; };
    return take(static_cast<std::size_t>(std::ranges::find_if_not(text_, isWord) - text_.begin()));
  }

 private:
  std::string_view text_;
  SourcePosition position_;
};

std::string_view trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// Returns a comment without its mark and the blank after it.
std::string commentText(std::string_view text) {
  if (text.starts_with(' ')) text.remove_prefix(1);
  return std::string(text);
}

bool isAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

class PoReader {
 public:
  PoReader(std::size_t file, const PoCharset& charset, PoFile& po, Diagnostics& diagnostics)
      : file_(file), charset_(charset), po_(po), diagnostics_(diagnostics) {}

  void run(std::string_view text);

 private:
  /// The part of the entry that was read last; strings belong to it.
  enum class Part { None, Context, Id, Text };

  void readLine(Line line);
  void readComment(std::string_view comment);
  bool readKeyword(Line& line, bool isObsolete);
  bool readString(Line& line);
  bool readEscape(Line& line);
  std::string* currentText();
  void append(std::string_view text);
  void appendEscaped(char byte);
  void convertBytes();
  void begin(Part part, const SourcePosition& position, bool isObsolete);
  void finish();
  void finishString();
  void fault(const SourcePosition& position, TextId text, std::string_view argument = {});

  std::size_t file_;
  const PoCharset& charset_;
  PoFile& po_;
  Diagnostics& diagnostics_;
  PoEntry entry_;
  Part part_ = Part::None;
  bool hasString_ = true;  ///< the part has a string
  bool isFaulty_ = false;  ///< the entry has been reported
  std::string bytes_;      ///< the end of the part that is still to be converted
};

void PoReader::fault(const SourcePosition& position, TextId text, std::string_view argument) {
  addDiagnostic(diagnostics_, {position, text, std::string(argument)});
  isFaulty_ = true;
}

void PoReader::run(std::string_view text) {
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    readLine(Line(line, {file_, number, 1}));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  finish();
}

void PoReader::readLine(Line line) {
  line.skipBlanks();
  const bool isObsolete = line.accept("#~");
  if (isObsolete && line.accept("|")) {
    if (part_ == Part::Text) finish();
    return entry_.previous.push_back(commentText(line.rest()));
  }
  if (!isObsolete && line.accept("#")) return readComment(line.rest());
  for (line.skipBlanks(); !line.atEnd() && line.peek() != '#'; line.skipBlanks())
    if (!(line.peek() == '"' ? readString(line) : readKeyword(line, isObsolete))) return;
}

/// A comment after a msgstr begins the next entry.
void PoReader::readComment(std::string_view comment) {
  if (part_ == Part::Text) finish();
  const char kind = comment.empty() ? '\0' : comment[0];
  const std::string_view text = comment.substr(comment.empty() ? 0 : 1);
  if (kind == '.') return entry_.extracted.push_back(commentText(text));
  if (kind == ':') return entry_.references.push_back(commentText(text));
  if (kind == '|') return entry_.previous.push_back(commentText(text));
  if (kind != ',') return entry_.comments.push_back(commentText(comment));
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = std::min(rest.find(','), rest.size());
    const std::string_view flag = trimmed(rest.substr(0, end));
    if (!flag.empty()) entry_.flags.emplace_back(flag);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

bool PoReader::readKeyword(Line& line, bool isObsolete) {
  const SourcePosition position = line.position();
  const std::string_view word = line.word();
  if (word == "msgctxt") {
    begin(Part::Context, position, isObsolete);
    entry_.context.emplace();
  } else if (word == "msgid") {
    begin(Part::Id, position, isObsolete);
    entry_.idPosition = position;
  } else if (word == "msgstr" && line.peek() != '[') {
    begin(Part::Text, position, isObsolete);
    entry_.textPosition = position;
  } else {
    const bool isPlural = word == "msgid_plural" || word == "msgstr";
    // The strings of plural forms need no report of their own.
    if (isPlural && !isFaulty_) fault(position, kPoPlural);
    if (!isPlural) fault(position, kPoKeywordExpected, word.empty() ? line.rest() : word);
    finishString();
    hasString_ = true;
    return false;
  }
  return true;
}

/// The parts of an entry come in the order of the enumeration, the context perhaps not at all.
void PoReader::begin(Part part, const SourcePosition& position, bool isObsolete) {
  const bool isNext = part_ == Part::Text || (part != Part::Text && part <= part_);
  if (isNext) finish();
  finishString();
  if (part_ == Part::None) {
    entry_.position = position;
    entry_.isObsolete = isObsolete;
  }
  if (part == Part::Text && part_ != Part::Id && !isFaulty_) fault(position, kPoIncomplete);
  part_ = part;
  hasString_ = false;
}

/// Ends a part: converts its last bytes, and reports a keyword without string.
void PoReader::finishString() {
  convertBytes();
  if (!hasString_ && !isFaulty_) fault(entry_.position, kPoIncomplete);
  hasString_ = true;
}

void PoReader::finish() {
  finishString();
  if (part_ != Part::None && part_ != Part::Text && !isFaulty_) fault(entry_.position, kPoIncomplete);
  if (part_ == Part::Text && !isFaulty_) po_.entries.push_back(std::move(entry_));
  entry_ = PoEntry();
  part_ = Part::None;
  isFaulty_ = false;
}

/// Returns null outside of an entry.
std::string* PoReader::currentText() {
  std::string* const parts[] = {nullptr, entry_.context ? &*entry_.context : nullptr, &entry_.id,
                                &entry_.text};
  return parts[static_cast<std::size_t>(part_)];
}

void PoReader::append(std::string_view text) {
  if (!bytes_.empty()) {
    const auto length = static_cast<std::size_t>(std::ranges::find_if_not(text, isAscii) - text.begin());
    bytes_ += text.substr(0, length);
    text.remove_prefix(length);
    if (text.empty()) return;
    convertBytes();
  }
  currentText()->append(text);
}

void PoReader::appendEscaped(char byte) {
  if (bytes_.empty() && isAscii(byte))
    *currentText() += byte;
  else
    bytes_ += byte;
}

void PoReader::convertBytes() {
  if (bytes_.empty()) return;
  Diagnostics faults;
  currentText()->append(charset_.decode(std::exchange(bytes_, {}), file_, faults));
  if (!faults.empty() && !isFaulty_) fault(entry_.position, kPoIllFormedText);
}

bool PoReader::readString(Line& line) {
  const SourcePosition position = line.position();
  if (currentText() == nullptr) {
    if (!isFaulty_) fault(position, kPoKeywordExpected, line.rest());
    return false;
  }
  hasString_ = true;
  line.accept("\"");
  for (;;) {
    append(line.take(std::min(line.rest().find_first_of("\"\\"), line.rest().size())));
    if (line.accept("\"")) return true;
    if (line.atEnd()) break;
    if (!readEscape(line)) return false;
  }
  fault(position, kPoStringNotEnded);
  return false;
}

/// Reads a digit of a number in an escape.
bool readDigit(Line& line, unsigned base, unsigned& value) {
  const unsigned digit = hexDigitValue(line.peek());
  if (line.atEnd() || digit >= base) return false;
  value = (value * base + digit) & 0xFF;
  line.take(1);
  return true;
}

bool PoReader::readEscape(Line& line) {
  constexpr std::string_view kNames = "abtnvfr\"\\", kCharacters = "\a\b\t\n\v\f\r\"\\";
  const SourcePosition position = line.position();
  line.accept("\\");
  if (const std::size_t found = kNames.find(line.peek()); !line.atEnd() && found != std::string_view::npos) {
    line.take(1);
    appendEscaped(kCharacters[found]);
    return true;
  }
  unsigned value = 0, digits = 0;
  const unsigned base = line.accept("x") ? 16 : 8, maximum = base == 16 ? 2 : 3;
  while (digits < maximum && readDigit(line, base, value)) ++digits;
  if (digits == 0) {
    fault(position, kPoWrongEscape);
    return false;
  }
  appendEscaped(static_cast<char>(value));
  return true;
}

constexpr std::string_view kCharsetField = "charset=";

/// Returns where the header of a file states its charset, and its length; empty if it does not.
std::string_view charsetIn(std::string_view header) {
  const std::size_t found = header.find(kCharsetField);
  if (found == std::string_view::npos) return {};
  const std::string_view name = header.substr(found + kCharsetField.size());
  return name.substr(0, std::min(name.find_first_of(" \t\r\n;"), name.size()));
}

/// Returns the charset that the header states. The text of the header is ASCII, whatever the other texts are.
std::string charsetOf(std::string_view bytes) {
  if (bytes.find(kCharsetField) == std::string_view::npos) return {};
  PoFile po;
  Diagnostics ignored;
  PoReader(0, PoCharset(), po, ignored).run(bytes);
  const PoEntry* const header = po.header();
  return header == nullptr ? std::string() : std::string(charsetIn(header->text));
}

/// What has been read is in UTF-8.
void stateUtf8(PoFile& po) {
  const auto header = std::ranges::find_if(po.entries, &PoEntry::isHeader);
  if (header == po.entries.end()) return;
  const std::string_view text = header->text, charset = charsetIn(text);
  if (!charset.empty())
    header->text.replace(static_cast<std::size_t>(charset.data() - text.data()), charset.size(), "UTF-8");
}

}  // namespace

bool readPo(std::string_view bytes, std::size_t file, PoFile& po, Diagnostics& diagnostics) {
  const std::string name = charsetOf(bytes);
  const PoCharset charset(name);
  if (!charset.isKnown()) {
    addDiagnostic(diagnostics, {{file, 0, 0}, kPoUnknownCharset, name});
    return false;
  }
  Diagnostics found;
  PoReader(file, charset, po, found).run(charset.decodeFile(bytes, file, found));
  stateUtf8(po);
  for (const Diagnostic& diagnostic : found) addDiagnostic(diagnostics, diagnostic);
  return found.empty();
}

}  // namespace vel::velmsg
