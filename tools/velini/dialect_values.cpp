// Each kind of value has a reader and a writer:
//
//   Plain   the text as it stands, without white space around it. A "\" at the end of a line joins it to the
//           next one with a blank in its place; further indented lines are joined with line breaks
//   Git     strings and escapes anywhere, comments after the value, "\" at the end of a line
//   Php     strings in double quotes, which may have several lines, and in single quotes; comments after it
//
// The file that is read may be anything: readers accept every text, and tell what is malformed.
#include "tools/velini/dialect_values.h"

#include <cstring>

namespace vel::velini {

namespace {

using inifile::isSpace;

// ---- Plain

/// Whether the line ends in a "\" that is not itself after a "\".
bool isContinued(std::string_view line) {
  const std::size_t last = line.find_last_not_of('\\');
  return (line.size() - (last == std::string_view::npos ? 0 : last + 1)) % 2 == 1;
}

/// Collects the comment lines from `at` on, and finds the first line that is not a comment; false at the end.
bool skipComments(const Dialect& dialect, std::string_view text, std::size_t at, std::vector<Range>& comments,
                  Line& line) {
  for (; at < text.size(); at = line.next) {
    line = lineAt(text, at);
    const std::size_t first = skipBlanks(text, {line.begin, line.end});
    if (first == line.end || !isComment(dialect, text[first])) return true;
    comments.push_back({line.begin, line.next});
  }
  return false;
}

void readContinued(const Dialect& dialect, std::string_view text, Line line, ReadValue& read) {
  std::string value;
  std::size_t within = 0;  // comments that a line of the value follows
  while (isContinued(text.substr(line.begin, line.end - line.begin))) {
    value.append(text, line.begin, line.end - line.begin - 1).append(" ");
    Line next{};
    if (!skipComments(dialect, text, line.next, read.comments, next)) {
      line.begin = line.end;
      break;
    }
    within = read.comments.size();
    line = next;
  }
  read.comments.resize(within);
  value.append(text, line.begin, line.end - line.begin);
  const Range wanted = trimmed(value, {0, value.size()});
  read.text = wanted.in(value);
  read.raw = trimmed(text, {read.raw.begin, line.end});
  read.next = line.next;
}

void readIndented(const Dialect& dialect, std::string_view text, Line line, std::size_t indentation,
                  ReadValue& read) {
  std::string value(trimmed(text, {line.begin, line.end}).in(text));
  std::string breaks = "\n";
  std::size_t within = 0;  // comments that a line of the value follows
  read.next = line.next;
  for (Line next{}; skipComments(dialect, text, line.next, read.comments, next); line = next) {
    const Range content = trimmed(text, {next.begin, next.end});
    // Blank lines belong to the value only if it goes on after them.
    if (content.isEmpty()) {
      breaks += '\n';
      continue;
    }
    if (content.begin - next.begin <= indentation) break;
    value.append(breaks).append(content.in(text));
    breaks = "\n";
    within = read.comments.size();
    read.raw.end = content.end;
    read.next = next.next;
  }
  read.comments.resize(within);
  read.text = value;
}

void readPlain(const Dialect& dialect, std::string_view text, Line line, std::size_t indentation,
               ReadValue& read) {
  if (dialect.continuation == Continuation::Backslash) return readContinued(dialect, text, line, read);
  if (dialect.continuation == Continuation::Indentation)
    return readIndented(dialect, text, line, indentation, read);
  read.text = read.raw.in(text);
}

// ---- Values with strings

/// Collects a value and its place. White space counts only between other characters.
class Collector {
 public:
  Collector(std::string_view text, std::size_t at, ReadValue& read)
      : text_(text), at_(at), lineEnd_(lineAt(text, at).end), read_(read) {}

  std::size_t at() const { return at_; }
  char now() const { return text_[at_]; }
  /// Returns the end of the current line.
  std::size_t lineEnd() {
    if (at_ > lineEnd_) lineEnd_ = lineAt(text_, at_).end;
    return lineEnd_;
  }
  bool isAtBreak() { return at_ == lineEnd(); }

  void skipBlank() {
    if (!read_.text.empty()) blanks_ += now();
    ++at_;
  }
  /// Consumes `count` characters, which give `piece`.
  void add(std::string_view piece, std::size_t count) {
    read_.text.append(blanks_).append(piece);
    blanks_.clear();
    consume(count);
  }
  /// Consumes a mark that is part of the written value and gives nothing.
  void consume(std::size_t count) {
    if (isEmpty_) read_.raw.begin = at_;
    isEmpty_ = false;
    at_ += count;
    read_.raw.end = at_;
  }
  void nextLine() { at_ = lineAt(text_, at_).next; }
  /// Consumes the rest of the line, which is a comment or nothing.
  void finish() {
    const Line line = lineAt(text_, at_);
    if (at_ < line.end) read_.comment = trimmed(text_, {at_ + 1, line.end}).in(text_);
    if (isEmpty_) read_.raw = {at_, at_};
    read_.next = line.next;
  }

 private:
  std::string_view text_;
  std::size_t at_;
  std::size_t lineEnd_;  ///< of a line before the current one, or of the current one
  ReadValue& read_;
  std::string blanks_;
  bool isEmpty_ = true;
};

/// Reads what follows a "\" in a Git value.
void readGitEscape(std::string_view text, Collector& value, ReadValue& read) {
  constexpr std::string_view kNames = "ntb\\\"", kCharacters = "\n\t\b\\\"";
  const std::size_t next = value.at() + 1;
  if (next == value.lineEnd()) {
    value.consume(1);
    return value.nextLine();
  }
  const std::size_t named = kNames.find(text[next]);
  read.isMalformed = read.isMalformed || named == std::string_view::npos;
  value.add(named != std::string_view::npos ? kCharacters.substr(named, 1) : text.substr(next - 1, 2), 2);
}

void readGit(const Dialect& dialect, std::string_view text, ReadValue& read, Collector& value) {
  bool isQuoted = false;
  while (!value.isAtBreak()) {
    const char c = value.now();
    if (c == '\\') {
      readGitEscape(text, value, read);
    } else if (c == '"') {
      value.consume(1);
      isQuoted = !isQuoted;
    } else if (isQuoted || (!isSpace(c) && !isComment(dialect, c))) {
      value.add({&c, 1}, 1);
    } else if (isSpace(c)) {
      value.skipBlank();
    } else {
      break;
    }
  }
  read.isMalformed = read.isMalformed || isQuoted;
}

/// Reads a string in quotes. Without an end it is a single character. A string in double quotes can have as
/// many lines as the text, so one without an end is searched for only once: further quotes are then all after
/// a "\", and do not have an end either.
void readPhpString(std::string_view text, ReadValue& read, Collector& value, bool& hasOpenString) {
  const std::size_t begin = value.at();
  const char quote = text[begin];
  std::size_t limit = quote == '"' ? text.size() : value.lineEnd();
  if (quote == '"' && hasOpenString) limit = begin;
  std::string content;
  for (std::size_t i = begin + 1; i < limit; ++i) {
    if (text[i] == quote) return value.add(content, i + 1 - begin);
    if (quote == '"' && text[i] == '\\' && i + 1 < limit && std::strchr("\"'\\", text[i + 1]) != nullptr) ++i;
    content += text[i];
  }
  hasOpenString = hasOpenString || quote == '"';
  read.isMalformed = true;
  value.add({&quote, 1}, 1);
}

void readPhp(const Dialect& dialect, std::string_view text, ReadValue& read, Collector& value,
             bool& hasOpenString) {
  while (!value.isAtBreak()) {
    const char c = value.now();
    if (c == '"' || c == '\'')
      readPhpString(text, read, value, hasOpenString);
    else if (isSpace(c))
      value.skipBlank();
    else if (isComment(dialect, c))
      break;
    else
      value.add({&c, 1}, 1);
  }
}

// ---- Writing

std::string writtenPlain(const Dialect& dialect, std::string_view value, const ValueStyle& style) {
  if (dialect.continuation != Continuation::Indentation) return std::string(value);
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\n') {
      text += value[i];
      continue;
    }
    text += style.lineEnd;
    if (i + 1 < value.size() && value[i + 1] != '\n') text.append(style.indentation).append("\t");
  }
  return text;
}

bool needsQuotes(std::string_view value, std::string_view special) {
  return value.find_first_of(special) != std::string_view::npos ||
         (!value.empty() && (isSpace(value.front()) || isSpace(value.back())));
}

/// Whether the text consists of operators, numbers and names of constants such as E_ALL, at least one of
/// these.
bool isExpression(std::string_view text) {
  constexpr std::string_view kOperators = "|&^~!() ", kDigits = "0123456789",
                             kNames = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
  bool hasConstant = false;
  for (std::size_t at = text.find_first_not_of(kOperators); at != std::string_view::npos;
       at = text.find_first_not_of(kOperators, at)) {
    const std::string_view operand = text.substr(at, text.find_first_of(kOperators, at) - at);
    const bool isName = operand.find_first_not_of(kNames) == std::string_view::npos &&
                        operand.find('_') != std::string_view::npos;
    if (!isName && operand.find_first_not_of(kDigits) != std::string_view::npos) return false;
    hasConstant = hasConstant || isName;
    at += operand.size();
  }
  return hasConstant;
}

/// Whether PHP would read another value than this text if it is written without quotes. An expression is
/// meant as one.
bool hasMeaning(std::string_view value) {
  return isReservedWord(value) ||
         (value.find_first_of("=?{}|&~!()^") != std::string_view::npos && !isExpression(value));
}

}  // namespace

bool isComment(const Dialect& dialect, char c) {
  return c != '\0' && std::strchr(dialect.comments, c) != nullptr;
}

ReadValue ValueReader::read(std::size_t at, std::size_t indentation) {
  const Line line = lineAt(text_, at);
  ReadValue read;
  read.raw = trimmed(text_, {at, line.end});
  read.next = line.next;
  if (dialect_.values == Values::Plain) {
    readPlain(dialect_, text_, line, indentation, read);
    return read;
  }
  Collector value(text_, at, read);
  if (dialect_.values == Values::Git)
    readGit(dialect_, text_, read, value);
  else
    readPhp(dialect_, text_, read, value, hasOpenString_);
  value.finish();
  return read;
}

std::string withEscapes(std::string_view text, std::string_view characters, std::string_view names) {
  std::string result;
  for (const char c : text) {
    const std::size_t found = characters.find(c);
    if (found != std::string_view::npos) result += '\\';
    result += found != std::string_view::npos ? names[found] : c;
  }
  return result;
}

std::string writtenValue(const Dialect& dialect, std::string_view value, const ValueStyle& style) {
  if (dialect.values == Values::Git) {
    const std::string text = withEscapes(value, "\n\t\b\\\"", "ntb\\\"");
    return style.isQuoted || needsQuotes(value, dialect.comments) ? '"' + text + '"' : text;
  }
  if (dialect.values == Values::Php &&
      (needsQuotes(value, ";\"'\r\n") || (!style.isEvaluated && (style.isQuoted || hasMeaning(value)))))
    return '"' + withEscapes(value, "\\\"", "\\\"") + '"';
  return writtenPlain(dialect, value, style);
}

std::string writtenSection(const Dialect& dialect, std::string_view section) {
  const std::size_t dot = section.find('.');
  if (!dialect.hasSubsections || dot == std::string_view::npos) return std::string(section);
  return std::string(section.substr(0, dot)) + " \"" + withEscapes(section.substr(dot + 1), "\\\"", "\\\"") +
         '"';
}

std::string writtenHeader(const Dialect& dialect, std::string_view section) {
  return '[' + writtenSection(dialect, section) + ']';
}

}  // namespace vel::velini
