#include "tools/velmsg/source_check.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/digits.h"
#include "tools/velmsg/po_translation.h"
#include "tools/velmsg/source_text.h"
#include "tools/velmsg/texts.h"
#include "vel_include/vel_messages.h"

namespace vel::velmsg {
namespace {

class SourceCheck {
 public:
  SourceCheck(const MessageSource& source, std::size_t reference, Diagnostics& findings)
      : source_(source), reference_(reference), findings_(findings) {}

  void run() {
    chooseLanguages();
    for (const SourceMessage& message : source_.messages) checkMessage(message);
  }

 private:
  void chooseLanguages();
  void checkMessage(const SourceMessage& message);
  void checkText(const SourceText& text, const SourceTextFacts& facts);
  void compare(const SourceText& original, const SourceTextFacts& originalFacts, const SourceText& text,
               const SourceTextFacts& facts);
  void find(const SourcePosition& position, TextId text, std::string argument) {
    findings_.push_back({position, text, std::move(argument)});
  }
  const std::string& nameOf(std::size_t language) const { return source_.languages[language].name; }

  const MessageSource& source_;
  std::size_t reference_;
  Diagnostics& findings_;
  std::vector<std::size_t> languages_;  ///< those of which every message needs a text
};

/// Several names of a number are one language.
void SourceCheck::chooseLanguages() {
  std::set<std::uint16_t> used, chosen;
  for (const SourceMessage& message : source_.messages)
    for (const SourceText& text : message.texts) used.insert(source_.languages[text.language].number);
  for (std::size_t i = 0; i < source_.languages.size(); ++i) {
    const SourceLanguage& language = source_.languages[i];
    if (!used.contains(language.number) && language.declared && !source_.messages.empty())
      find(language.position, kUnusedLanguage, nameOf(i));
    if (used.contains(language.number) && chosen.insert(language.number).second) languages_.push_back(i);
  }
}

SourcePosition positionIn(const SourceText& text, std::size_t offset) {
  SourcePosition position = text.position;
  const std::string_view before = std::string_view(text.text).substr(0, offset);
  const std::size_t lineBreak = before.rfind('\n');
  const std::string_view line = before.substr(lineBreak == std::string_view::npos ? 0 : lineBreak + 1);
  const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
  position.line += static_cast<std::size_t>(std::ranges::count(before, '\n'));
  position.column = 1 + static_cast<std::size_t>(std::ranges::count_if(line, isFirstByte));
  return position;
}

/// Returns "0x1B", since a terminal must not get the character.
std::string hexNumber(char c) {
  const auto digits = hexPair(static_cast<unsigned char>(c));
  return "0x" + std::string(digits.data(), digits.size());
}

/// Returns the percent sign at an offset and a few characters after it, for a report.
std::string excerpt(const SourceText& text, std::size_t offset) {
  constexpr std::size_t kMaxLength = 12;
  std::string rest = text.text.substr(offset, text.text.find('\n', offset) - offset);
  std::ranges::replace_if(rest, isControlCharacter, ' ');
  std::size_t length = std::min(rest.size(), kMaxLength);
  // Not a part of a character.
  while (length < rest.size() && (static_cast<unsigned char>(rest[length]) & 0xC0) == 0x80) --length;
  rest.resize(length);
  rest.erase(rest.find_last_not_of(' ') + 1);
  return rest;
}

std::string argumentOf(TextId id, const SourceText& text, std::size_t offset) {
  return id == kControlCharacter ? hexNumber(text.text[offset]) : excerpt(text, offset);
}

void SourceCheck::checkText(const SourceText& text, const SourceTextFacts& facts) {
  std::pair<std::optional<std::size_t>, TextId> rows[] = {
      {facts.malformed, kEscapeNotEnded},        {facts.number, kInsertNotText},
      {facts.aboveMaximum, kInsertAboveMaximum}, {facts.unknown, kUnknownEscape},
      {facts.afterEnd, kTextAfterEnd},           {facts.control, kControlCharacter}};
  std::ranges::sort(rows);
  for (const auto& [offset, id] : rows)
    if (offset) find(positionIn(text, *offset), id, argumentOf(id, text, *offset));
  if (facts.length == 0 && facts.inserts.empty() && !facts.malformed)
    find(text.position, kEmptyText, nameOf(text.language));
  if (facts.length > VEL_MAX_MESSAGE_LENGTH)
    find(text.position, kExpandedTooLong, std::to_string(facts.length));
  if (facts.storedUnits > kMaxStoredUnits)
    find(text.position, kTextTooLong, std::to_string(facts.storedUnits));
}

std::size_t leadingBreaks(std::string_view text) {
  return std::min(text.find_first_not_of('\n'), text.size());
}

bool endsWithEmptyLine(std::string_view text) {
  return text.ends_with("\n\n");
}

void SourceCheck::compare(const SourceText& original, const SourceTextFacts& originalFacts,
                          const SourceText& text, const SourceTextFacts& facts) {
  const std::string language = nameOf(text.language) + ", " + nameOf(original.language);
  if (facts.inserts != originalFacts.inserts)
    find(text.position, kDifferentInserts,
         language + ": " + insertsText(facts.inserts) + " / " + insertsText(originalFacts.inserts));
  if (facts.hasEnd != originalFacts.hasEnd && !facts.malformed && !originalFacts.malformed)
    find(text.position, kDifferentEnds, language);
  if ((leadingBreaks(text.text) != 0) != (leadingBreaks(original.text) != 0) ||
      endsWithEmptyLine(text.text) != endsWithEmptyLine(original.text))
    find(text.position, kDifferentBreaks, language);
}

void SourceCheck::checkMessage(const SourceMessage& message) {
  if (!VelClMessageCatalog::isValidMessageId(message.id)) find(message.position, kMessageZero, "");
  // The reader has reported a message without any text.
  for (const std::size_t language : languages_)
    if (!message.texts.empty() && findText(source_, message, language) == nullptr)
      find(message.position, kNoTranslation, nameOf(language));
  const SourceText* const original = findText(source_, message, reference_);
  const SourceTextFacts originalFacts =
      original != nullptr ? readSourceText(original->text) : SourceTextFacts();
  for (const SourceText& text : message.texts) {
    const SourceTextFacts facts = readSourceText(text.text);
    checkText(text, facts);
    if (original != nullptr && &text != original) compare(*original, originalFacts, text, facts);
  }
}

}  // namespace

void checkSource(const MessageSource& source, std::size_t reference, Diagnostics& findings) {
  SourceCheck(source, reference, findings).run();
}

}  // namespace vel::velmsg
