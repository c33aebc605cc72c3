// Parses message sources. Statements have the form "keyword = value" and may be divided into lines in any
// way; only the texts of messages, which follow a Language statement, are lines.
#include "tools/velmsg/source_reader.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "tools/velmsg/source_encoding.h"

namespace vel::velmsg {
namespace {

constexpr std::uint32_t kMaxSeverity = 3;
constexpr std::uint32_t kMaxFacility = 0xFFF;
constexpr std::uint32_t kMaxLanguage = 0xFFFF;
constexpr std::uint32_t kMaxNumber = 0xFFFF;
constexpr std::uint32_t kMax32Bits = 0xFFFFFFFF;

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return !PrecedesIgnoringCase()(a, b) && !PrecedesIgnoringCase()(b, a);
}

/// Parses a number as in C: decimal, octal after "0", hexadecimal after "0x", perhaps with the suffixes of an
/// integer type.
std::optional<std::uint64_t> parseNumber(std::string_view text) {
  while (!text.empty() && std::string_view("uUlL").find(text.back()) != std::string_view::npos)
    text.remove_suffix(1);
  int base = 10;
  if (text.size() > 1 && text[0] == '0') {
    const bool isHexadecimal = toAsciiLower(text[1]) == 'x';
    base = isHexadecimal ? 16 : 8;
    text.remove_prefix(isHexadecimal ? 2 : 1);
  }
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error == std::errc::result_out_of_range) return static_cast<std::uint64_t>(-1);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::uint32_t numberOf(const std::vector<NamedNumber>& numbers, std::size_t index) {
  return index == kNoName ? 0 : numbers[index].number;
}

/// Calls `visit` with each message of the file that has the same key as an earlier one, and with that.
/// `order` has the indexes of the messages with a key.
template <typename Key, typename Visit>
void visitRepetitions(const MessageSource& source, std::vector<std::size_t> order, Key key, Visit visit) {
  const auto precedes = [&](std::size_t a, std::size_t b) {
    const auto& first = key(source.messages[a]);
    const auto& second = key(source.messages[b]);
    return first != second ? first < second : a < b;
  };
  std::ranges::sort(order, precedes);
  for (std::size_t i = 1; i < order.size(); ++i) {
    const SourceMessage& message = source.messages[order[i]];
    const SourceMessage& before = source.messages[order[i - 1]];
    if (key(message) == key(before)) visit(message, before);
  }
}

}  // namespace

const SourceReader::Keyword SourceReader::kKeywords[] = {
    {"MessageIdTypedef", &SourceReader::readMessageIdTypedef},
    {"SeverityNames", &SourceReader::readSeverityNames},
    {"FacilityNames", &SourceReader::readFacilityNames},
    {"LanguageNames", &SourceReader::readLanguageNames},
    {"OutputBase", &SourceReader::readOutputBase},
    {"MessageId", &SourceReader::readMessageId},
    {"Severity", &SourceReader::readSeverity},
    {"Facility", &SourceReader::readFacility},
    {"SymbolicName", &SourceReader::readSymbolicName},
    {"Language", &SourceReader::readLanguage},
};

const SourceReader::Keyword* SourceReader::findKeyword(std::string_view word) {
  const auto* const found = std::ranges::find_if(
      kKeywords, [word](const Keyword& keyword) { return equalsIgnoringCase(keyword.name, word); });
  return found == std::end(kKeywords) ? nullptr : found;
}

SourceReader::SourceReader(std::string_view text, MessageSource& source, Diagnostics& diagnostics)
    : lexer_(text, source.files.size() - 1),
      source_(source),
      diagnostics_(diagnostics),
      severities_(source.severities),
      facilities_(source.facilities),
      languages_(source.languages),
      lastNumbers_(source.facilities.size() + 1),
      lastMessageOfLang_(kMaxLanguage + 1) {
  for (const SourceMessage& message : source.messages)
    lastNumbers_[message.facility == kNoName ? 0 : message.facility + 1] = message.id & kMaxNumber;
  lexer_.keepComments(std::exchange(source.trailingComments, {}));
}

void SourceReader::fault(const SourcePosition& position, TextId text, std::string_view argument) {
  addDiagnostic(diagnostics_, {position, text, std::string(argument)});
}

/// Reports what is at the cursor and skips the rest of the line.
void SourceReader::faultInLine(TextId text) {
  const SourcePosition position = lexer_.position();
  fault(position, text, lexer_.line());
}

void SourceReader::run() {
  for (lexer_.skipBlanks(); !lexer_.atEnd(); lexer_.skipBlanks()) readStatement();
  finishMessage();
  reportRepetitions();
  source_.trailingComments = lexer_.takeComments();
}

void SourceReader::readStatement() {
  const SourcePosition position = lexer_.position();
  const std::string_view word = lexer_.word();
  const Keyword* const keyword = findKeyword(word);
  if (keyword == nullptr) {
    fault(position, kUnknownStatement, word.empty() ? lexer_.token() : word);
    lexer_.line();
    return;
  }
  lexer_.skipBlanks();
  if (!lexer_.consume('=')) return faultInLine(kEqualsExpected);
  (this->*keyword->read)(position);
}

/// Comments before a statement of the header section belong to that, unless a message is before them.
void SourceReader::keepHeaderComments() {
  if (!source_.messages.empty() || isInMessage_) return;
  std::ranges::move(lexer_.takeComments(), std::back_inserter(source_.headerComments));
}

/// Reads a list of names in parentheses; `readName` reads what follows the name and its "=".
template <typename ReadName>
void SourceReader::readNames(ReadName readName) {
  keepHeaderComments();
  lexer_.skipBlanks();
  if (!lexer_.consume('(')) return faultInLine(kListExpected);
  for (lexer_.skipBlanks(); !lexer_.consume(')'); lexer_.skipBlanks()) {
    if (lexer_.atEnd()) return fault(lexer_.position(), kListNotClosed);
    const SourcePosition position = lexer_.position();
    const std::string_view name = lexer_.word();
    lexer_.skipBlanks();
    if (!name.empty() && lexer_.consume('=')) {
      readName(name, position);
      continue;
    }
    const SourcePosition wrong = lexer_.position();
    const std::string_view rest = lexer_.line();
    fault(wrong, kNameAndNumberExpected, rest);
    if (rest.find(')') != std::string_view::npos) return;
  }
}

/// Skips blanks before a value. Returns false, and reports the place after "=", if the next statement comes
/// instead, which stays.
bool SourceReader::isValueNext(TextId missing) {
  const SourcePosition position = lexer_.position();
  lexer_.skipBlanks();
  const bool isValue = isAsciiDigit(lexer_.peek()) || (!lexer_.atEnd() && !lexer_.isAssignmentNext());
  if (!isValue) fault(position, missing);
  return isValue;
}

std::optional<std::uint32_t> SourceReader::readNumber(std::uint32_t maximum) {
  if (!isValueNext(kNumberExpected)) return std::nullopt;
  const SourcePosition position = lexer_.position();
  const std::string_view digits = lexer_.number();
  const auto number = parseNumber(digits);
  if (number && *number <= maximum) return static_cast<std::uint32_t>(*number);
  const TextId text = number ? kNumberTooLarge : kNumberExpected;
  fault(position, text, digits.empty() ? lexer_.token() : digits);
  return std::nullopt;
}

/// Consumes what follows a ":", if there is one, without white space around it.
template <typename Read>
std::string_view SourceReader::readAfterColon(Read read) {
  lexer_.skipBlanks();
  if (!lexer_.consume(':')) return {};
  lexer_.skipBlanks();
  return (lexer_.*read)();
}

/// Sets a declared name. A name that is known without declaration may get another number, and any name may be
/// repeated with its number.
template <typename Entries, typename Entry>
void SourceReader::declare(Entries& entries, NameIndex& index, Entry entry) {
  const std::size_t known = index.find(entry.name);
  if (known == kNoName) {
    index.add(entry.name, entries.size());
    entries.push_back(std::move(entry));
  } else if (entries[known].declared && entries[known].number != entry.number) {
    fault(entry.position, kNameDeclaredTwice, entry.name);
  } else {
    entries[known] = std::move(entry);
  }
}

void SourceReader::readNumbers(std::vector<NamedNumber>& numbers, NameIndex& index, std::uint32_t maximum) {
  readNames([&](std::string_view name, const SourcePosition& position) {
    const auto number = readNumber(maximum);
    const std::string_view symbol = readAfterColon(&SourceLexer::word);
    if (number)
      declare(numbers, index, NamedNumber{std::string(name), *number, std::string(symbol), true, position});
  });
}

void SourceReader::readSeverityNames(const SourcePosition&) {
  readNumbers(source_.severities, severities_, kMaxSeverity);
}

void SourceReader::readFacilityNames(const SourcePosition&) {
  readNumbers(source_.facilities, facilities_, kMaxFacility);
  lastNumbers_.resize(source_.facilities.size() + 1);
}

void SourceReader::readLanguageNames(const SourcePosition&) {
  readNames([this](std::string_view name, const SourcePosition& position) {
    const auto number = readNumber(kMaxLanguage);
    const std::string_view file = readAfterColon(&SourceLexer::token);
    if (number)
      declare(source_.languages, languages_,
              SourceLanguage{std::string(name), static_cast<std::uint16_t>(*number), std::string(file), true,
                             position});
  });
}

/// Consumes a word that may be missing: then the next word begins a statement, and stays.
std::string_view SourceReader::readOptionalWord() {
  lexer_.skipBlanks();
  return lexer_.isAssignmentNext() ? std::string_view() : lexer_.word();
}

void SourceReader::readMessageIdTypedef(const SourcePosition&) {
  keepHeaderComments();
  source_.idTypedef = readOptionalWord();
}

void SourceReader::readOutputBase(const SourcePosition& position) {
  keepHeaderComments();
  const auto base = readNumber(kMax32Bits);
  if (!base) return;
  if (*base != 10 && *base != 16) return fault(position, kWrongOutputBase);
  source_.outputBase = *base;
}

void SourceReader::readMessageId(const SourcePosition& position) {
  finishMessage();
  message_ = SourceMessage();
  message_.position = position;
  message_.comments = lexer_.takeComments();
  isInMessage_ = true;
  isResolved_ = false;
  lexer_.skipBlanks();
  isRelative_ = lexer_.consume('+');
  const bool hasNumber = isRelative_ || (!lexer_.atEnd() && !lexer_.isAssignmentNext());
  isRelative_ = isRelative_ || !hasNumber;
  hasText_ = false;
  const auto number = hasNumber ? readNumber(kMaxNumber) : std::optional<std::uint32_t>(1);
  number_ = number.value_or(0);
  isFaulty_ = !number;
}

/// Whether the statements of a message may come here: after MessageId and before the first text.
bool SourceReader::isInHead(const SourcePosition& position) {
  if (isInMessage_ && !isResolved_) return true;
  fault(position, kMessageIdExpected);
  return false;
}

std::optional<std::size_t> SourceReader::readKnownName(const NameIndex& index, TextId unknown) {
  if (!isValueNext(unknown)) return std::nullopt;
  const SourcePosition position = lexer_.position();
  const std::string_view name = lexer_.word();
  const std::size_t found = index.find(name);
  if (found != kNoName) return found;
  fault(position, unknown, name.empty() ? lexer_.token() : name);
  return std::nullopt;
}

void SourceReader::readSeverity(const SourcePosition& position) {
  const bool isAllowed = isInHead(position);
  if (const auto severity = readKnownName(severities_, kUnknownSeverity); severity && isAllowed)
    source_.severity = *severity;
}

void SourceReader::readFacility(const SourcePosition& position) {
  const bool isAllowed = isInHead(position);
  if (const auto facility = readKnownName(facilities_, kUnknownFacility); facility && isAllowed)
    source_.facility = *facility;
}

void SourceReader::readSymbolicName(const SourcePosition& position) {
  const bool isAllowed = isInHead(position);
  lexer_.skipBlanks();
  message_.symbolPosition = lexer_.position();
  const std::string_view name = readOptionalWord();
  if (isAllowed) message_.symbolicName = name;
}

/// Computes the id, for which severity and facility must be known.
void SourceReader::resolveId() {
  if (isResolved_) return;
  isResolved_ = true;
  // The last place is for messages without a facility.
  std::uint32_t& last = lastNumbers_[source_.facility == kNoName ? 0 : source_.facility + 1];
  const std::uint32_t number = isRelative_ ? last + number_ : number_;
  if (number > kMaxNumber) {
    fault(message_.position, kNumberTooLarge, std::to_string(number));
    isFaulty_ = true;
  }
  last = number & kMaxNumber;
  message_.severity = source_.severity;
  message_.facility = source_.facility;
  message_.id = numberOf(source_.severities, source_.severity) << 30 |
                numberOf(source_.facilities, source_.facility) << 16 | last;
  message_.idTypedef = source_.idTypedef;
  message_.outputBase = source_.outputBase;
}

void SourceReader::readLanguage(const SourcePosition& position) {
  const auto language = readKnownName(languages_, kUnknownLanguage);
  const SourcePosition end = lexer_.position();
  if (!lexer_.lineEnd()) fault(end, kLineEndExpected);
  SourceText text{language.value_or(0), {}, lexer_.position()};
  text.text = readText(position);
  if (!isInMessage_) return fault(position, kMessageIdExpected);
  resolveId();
  hasText_ = true;
  std::ranges::move(lexer_.takeComments(), std::back_inserter(message_.comments));
  if (!language) return;
  std::size_t& last = lastMessageOfLang_[source_.languages[*language].number];
  if (last == source_.messages.size() + 1)
    return fault(position, kLanguageUsedTwice, source_.languages[*language].name);
  last = source_.messages.size() + 1;
  message_.texts.push_back(std::move(text));
}

/// Reads the lines of a text up to the one that contains only ".".
std::string SourceReader::readText(const SourcePosition& position) {
  std::string text;
  const SourcePosition start = lexer_.position();
  while (!lexer_.atEnd()) {
    const std::string_view line = lexer_.line();
    if (line == ".") {
      if (text.find('\0') != std::string::npos) fault(start, kNulInText);
      return text;
    }
    text.append(line) += '\n';
  }
  fault(position, kTextNotEnded);
  return text;
}

void SourceReader::finishMessage() {
  if (!std::exchange(isInMessage_, false)) return;
  resolveId();
  if (!hasText_) fault(message_.position, kMessageWithoutText);
  // A message without its number would count as a repetition of another one.
  if (!isFaulty_) source_.messages.push_back(std::move(message_));
}

/// Reports the messages of this file whose id or symbolic name was used before.
void SourceReader::reportRepetitions() {
  std::vector<std::size_t> all, named;
  for (std::size_t i = 0; i < source_.messages.size(); ++i) {
    all.push_back(i);
    if (!source_.messages[i].symbolicName.empty()) named.push_back(i);
  }
  const auto idOf = [](const SourceMessage& message) -> const auto& {
    return message.id;
  };
  const auto nameOf = [](const SourceMessage& message) -> const auto& {
    return message.symbolicName;
  };
  const std::size_t file = source_.files.size() - 1;
  visitRepetitions(source_, std::move(all), idOf, [&](const auto& message, const auto& before) {
    if (message.position.file == file)
      fault(message.position, kNumberUsedTwice, positionText(source_, before.position));
  });
  visitRepetitions(source_, std::move(named), nameOf, [&](const auto& message, const auto& before) {
    if (message.position.file == file)
      fault(message.symbolPosition, kSymbolUsedTwice, positionText(source_, before.symbolPosition));
  });
}

bool readMessageSource(const std::string& fileName, std::string_view bytes, const VelClCCSID& codepage,
                       MessageSource& source, Diagnostics& diagnostics) {
  const auto before = static_cast<std::ptrdiff_t>(diagnostics.size());
  source.files.push_back(fileName);
  const std::string text = toUtf8(bytes, codepage, source.files.size() - 1, diagnostics);
  SourceReader(text, source, diagnostics).run();
  const auto precedes = [](const Diagnostic& a, const Diagnostic& b) {
    return std::pair(a.position.line, a.position.column) < std::pair(b.position.line, b.position.column);
  };
  std::stable_sort(diagnostics.begin() + before, diagnostics.end(), precedes);
  return diagnostics.empty();
}

}  // namespace vel::velmsg
