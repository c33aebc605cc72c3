// A text in a source is lines, and the last one has a line break, too. In a .po file it has none, so that a
// translator cannot forget it. A text of nothing but empty lines keeps all its line breaks, because an empty
// msgstr means that there is no translation.
#include "tools/velmsg/po_translation.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "base/ascii.h"
#include "base/language_names.h"
#include "tools/velmsg/error_names.h"
#include "tools/velmsg/source_encoding.h"
#include "tools/velmsg/source_text.h"
#include "tools/velmsg/texts.h"
#include "vel_include/vel_messages.h"

namespace vel::velmsg {
namespace {

std::string poText(std::string_view text) {
  if (text.find_first_not_of('\n') != std::string_view::npos) text.remove_suffix(1);
  return std::string(text);
}

/// Returns a text with "\n" for every line break: some tools write "\r\n".
std::string withPlainBreaks(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (!text.substr(i).starts_with("\r\n")) result += text[i];
  return result;
}

std::string sourceText(std::string_view text) {
  std::string result = withPlainBreaks(text);
  if (text.find_first_not_of('\n') != std::string_view::npos) result += '\n';
  return result;
}

/// Returns what is wrong with a text for a source. A line with only a full stop would end it.
std::optional<TextId> mistakeIn(std::string_view text) {
  if (text.find('\0') != std::string_view::npos || text.starts_with(".\n") ||
      text.find("\n.\n") != std::string_view::npos)
    return kPoUnusableText;
  const SourceTextFacts facts = readSourceText(text);
  if (facts.control) return kControlCharacter;
  return facts.storedUnits > kMaxStoredUnits ? std::optional(kTextTooLong) : std::nullopt;
}

/// Returns the context of each message: its symbolic name or, where another message has that, its number.
std::vector<std::string> contextsOf(const MessageSource& source) {
  std::set<std::string_view> names;
  std::vector<std::string> contexts;
  for (const SourceMessage& message : source.messages) {
    const bool isNamed = !message.symbolicName.empty() && names.insert(message.symbolicName).second;
    contexts.push_back(isNamed ? message.symbolicName : std::to_string(message.id));
  }
  return contexts;
}

/// Returns the text that is translated; null for a message without texts.
const SourceText* translatedText(const MessageSource& source, const SourceMessage& message,
                                 std::size_t reference) {
  const SourceText* const text = findText(source, message, reference);
  if (text != nullptr || message.texts.empty()) return text;
  return message.texts.data();
}

/// Returns a comment of a source without the marks of C and C++, since programmers write comments for the
/// header of identifiers; "" for a line without words.
std::string withoutCommentMarks(std::string_view comment) {
  constexpr std::string_view kMarks = " \t\r/*-=#";
  comment.remove_prefix(std::min(comment.find_first_not_of(kMarks), comment.size()));
  std::string words(comment.substr(0, comment.find_last_not_of(kMarks) + 1));
  for (char& c : words)
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  return words;
}

/// Characters that gettext encloses names with blanks in, in UTF-8.
constexpr char kFirstStrongIsolate[] = {'\xE2', '\x81', '\xA8', '\0'};
constexpr char kPopDirectionalIsolate[] = {'\xE2', '\x81', '\xA9', '\0'};

/// Blanks separate references, so a name with blanks is enclosed.
std::string referenceText(const MessageSource& source, const SourcePosition& position) {
  const std::string& file = source.files.at(position.file);
  const bool isEnclosed = file.find_first_of(" \t") != std::string::npos;
  return (isEnclosed ? kFirstStrongIsolate + file + kPopDirectionalIsolate : file) + ':' +
         std::to_string(position.line);
}

/// Returns the language for the header, "" if it has no name.
std::string languageName(std::uint16_t number) {
  char name[kMaxLocaleName + 1];
  return localeNameOfLanguageId(number, name) ? name : "";
}

PoEntry headerOf(const MessageSource& source, std::uint16_t language) {
  std::string project = source.files.empty() ? "" : source.files[0];
  project.erase(0, project.find_last_of("/\\") + 1);
  PoEntry header;
  // Without the fields that are empty, checkers warn.
  header.text = "Project-Id-Version: " + project +
                "\nPO-Revision-Date: \nLast-Translator: \nLanguage-Team: \n" +
                "Language: " + languageName(language) +
                "\nMIME-Version: 1.0\nContent-Type: text/plain; charset=UTF-8\n"
                "Content-Transfer-Encoding: 8bit\nX-Generator: velmsg\n" +
                std::string(kPoLanguageField) + ": " + std::to_string(language) + '\n';
  return header;
}

PoEntry entryOf(const MessageSource& source, const SourceMessage& message, const std::string& id) {
  PoEntry entry;
  entry.id = id;
  for (const std::string& comment : message.comments)
    if (std::string words = withoutCommentMarks(comment); !words.empty())
      entry.extracted.push_back(std::move(words));
  if (message.position.line != 0) entry.references.push_back(referenceText(source, message.position));
  return entry;
}

/// Inserts are not the conversions of printf, which a checker may take them for.
void setFormatFlag(PoEntry& entry) {
  if ((entry.id + entry.text).find('%') != std::string::npos) entry.flags.emplace_back("no-c-format");
}

}  // namespace

const SourceText* findText(const MessageSource& source, const SourceMessage& message, std::size_t language) {
  if (language == kNoName) return nullptr;
  const auto numberOf = [&source](const SourceText& text) { return source.languages[text.language].number; };
  const auto found = std::ranges::find(message.texts, source.languages[language].number, numberOf);
  return found == message.texts.end() ? nullptr : &*found;
}

std::size_t findLanguage(const MessageSource& source, std::uint16_t number) {
  const auto found = std::ranges::find(source.languages, number, &SourceLanguage::number);
  return found == source.languages.end() ? kNoName
                                         : static_cast<std::size_t>(found - source.languages.begin());
}

std::size_t referenceLanguage(const MessageSource& source, std::uint16_t number) {
  if (number != 0) return findLanguage(source, number);
  for (const SourceMessage& message : source.messages)
    if (!message.texts.empty()) return message.texts[0].language;
  return kNoName;
}

PoFile exportPo(const MessageSource& source, std::size_t reference, std::uint16_t language) {
  const std::size_t index = findLanguage(source, language);
  const std::vector<std::string> contexts = contextsOf(source);
  PoFile po;
  po.entries.push_back(headerOf(source, language));
  for (std::size_t i = 0; i < source.messages.size(); ++i) {
    const SourceMessage& message = source.messages[i];
    const SourceText* const original = translatedText(source, message, reference);
    if (original == nullptr) continue;
    PoEntry entry = entryOf(source, message, poText(original->text));
    entry.context = contexts[i];
    if (const SourceText* const text = findText(source, message, index)) entry.text = poText(text->text);
    setFormatFlag(entry);
    po.entries.push_back(std::move(entry));
  }
  return po;
}

namespace {

/// Returns the header of an older file, with what this program needs in it.
std::string mergedHeader(std::string_view older, std::string_view current) {
  constexpr std::string_view kType = "Content-Type:";
  std::string header;
  for (std::string_view rest = older; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.starts_with(kType))
      header += "Content-Type: text/plain; charset=UTF-8\n";
    else if (!line.starts_with(kPoLanguageField))
      header.append(line) += '\n';
  }
  return header.append(current.substr(current.find(kPoLanguageField)));
}

/// Keeps the flags that translators and their tools have set. A later "c-format" counts instead of
/// "no-c-format", and the other way round.
void mergeFlags(PoEntry& entry, const PoEntry& older) {
  constexpr std::string_view kNo = "no-";
  for (const std::string& flag : older.flags) {
    if (flag == kFuzzy || entry.hasFlag(flag)) continue;
    const std::string opposite = flag.starts_with(kNo) ? flag.substr(kNo.size()) : std::string(kNo) + flag;
    std::erase(entry.flags, opposite);
    entry.flags.push_back(flag);
  }
}

/// Decides on the text of an entry that both files have.
void mergeText(PoEntry& entry, const PoEntry& older) {
  const bool isSame = entry.text == older.text, isNew = entry.text.empty();
  const bool isChanged = entry.id != older.id;
  // Both texts are for other words now.
  if (isChanged && !isSame && !isNew) return;
  const bool isFuzzy = isChanged || older.hasFlag(kFuzzy) || older.isObsolete || (!isSame && !isNew);
  entry.text = older.text;
  if (!isFuzzy || entry.text.empty()) return;
  entry.flags.insert(entry.flags.begin(), std::string(kFuzzy));
  entry.previous = isChanged ? poFieldLines("msgid", older.id) : older.previous;
}

}  // namespace

void mergePo(PoFile& po, const PoFile& older) {
  std::map<std::string_view, const PoEntry*> rest;
  for (const PoEntry& entry : older.entries)
    if (entry.context && !entry.isObsolete) rest.emplace(*entry.context, &entry);
  for (const PoEntry& entry : older.entries)
    if (entry.context && entry.isObsolete) rest.emplace(*entry.context, &entry);
  for (PoEntry& entry : po.entries) {
    if (entry.isHeader()) continue;
    const auto found = rest.find(*entry.context);
    if (found == rest.end()) continue;
    entry.comments = found->second->comments;
    mergeFlags(entry, *found->second);
    mergeText(entry, *found->second);
    rest.erase(found);
  }
  if (const PoEntry* const header = older.header()) {
    po.entries[0].comments = header->comments;
    po.entries[0].text = mergedHeader(header->text, po.entries[0].text);
  }
  for (const PoEntry& entry : older.entries) {
    const auto found = rest.find(entry.context.value_or(""));
    if (found == rest.end() || found->second != &entry || entry.text.empty()) continue;
    po.entries.push_back(entry);
    PoEntry& obsolete = po.entries.back();
    obsolete.isObsolete = true;
    obsolete.extracted.clear();
    obsolete.references.clear();
  }
}

void checkOlderPo(const MessageSource& source, const PoFile& older, std::uint16_t language,
                  Diagnostics& diagnostics) {
  const std::uint16_t other = languageOfPo(source, older, diagnostics);
  if (other != 0 && other != language)
    addDiagnostic(diagnostics, {older.header()->textPosition, kPoOtherLanguage, std::to_string(other)});
  std::set<std::string_view> contexts;
  for (const PoEntry& entry : older.entries)
    if (entry.context && !entry.isObsolete && !contexts.insert(*entry.context).second)
      addDiagnostic(diagnostics, {entry.position, kPoRepeatedContext, *entry.context});
}

std::uint16_t languageOfPo(const MessageSource& source, const PoFile& po, Diagnostics& diagnostics) {
  constexpr std::uint32_t kMaxLanguage = 0xFFFF;
  const std::string digits = po.headerField(kPoLanguageField), name = po.headerField("Language");
  std::uint32_t number = 0;
  const bool isNumber = parseNumber(digits.c_str(), number) && number != 0 && number <= kMaxLanguage;
  if (isNumber) return static_cast<std::uint16_t>(number);
  if (!digits.empty()) {
    addDiagnostic(diagnostics, {po.header()->textPosition, kPoLanguageNumber, digits});
    return 0;
  }
  for (const SourceLanguage& known : source.languages)
    if (!name.empty() && languageName(known.number) == name) return known.number;
  return static_cast<std::uint16_t>(languageIdOfExactLocaleName(name));
}

namespace {

/// Returns a name for a language that no other one has: that of its ISO code, else its number.
std::string newLanguageName(const MessageSource& source, std::uint16_t number) {
  const std::string code = languageName(number);
  const VelClLanguage language(code.c_str());
  std::string name;
  for (const char* c = VelClLanguage::getLanguageName(language.getLanguage()); *c != '\0'; ++c)
    if (isAsciiAlnum(*c)) name += *c;
  const auto isTaken = [&source](const std::string& candidate) {
    return std::ranges::any_of(source.languages, [&candidate](const SourceLanguage& other) {
      return equalsIgnoringAsciiCase(other.name.c_str(), candidate.c_str());
    });
  };
  if (!name.empty() && !isTaken(name)) return name;
  return (name.empty() ? "Language" : name) + '_' + std::to_string(number);
}

std::size_t addLanguage(MessageSource& source, std::uint16_t number) {
  char file[16];
  std::snprintf(file, sizeof file, "MSG%05X", static_cast<unsigned>(number));
  source.languages.push_back({newLanguageName(source, number), number, file, true, {}});
  return source.languages.size() - 1;
}

/// Languages keep the order that the source declares them in, as far as the message follows it.
void setText(const MessageSource& source, SourceMessage& message, std::size_t language, std::string text) {
  if (const SourceText* const found = findText(source, message, language)) {
    message.texts[static_cast<std::size_t>(found - message.texts.data())].text = std::move(text);
    return;
  }
  const auto isLater = [language](const SourceText& other) { return other.language > language; };
  const auto next = std::ranges::find_if(message.texts, isLater);
  message.texts.insert(next, {language, std::move(text), {}});
}

class Importer {
 public:
  Importer(MessageSource& source, const PoImport& options, Diagnostics& diagnostics)
      : source_(source),
        options_(options),
        language_(findLanguage(source, options.language)),
        diagnostics_(diagnostics) {
    const std::vector<std::string> contexts = contextsOf(source);
    for (std::size_t i = 0; i < contexts.size(); ++i) messages_.emplace(contexts[i], State{i});
  }

  bool hasChanged() const { return hasChanged_; }

  void add(const PoEntry& entry) {
    if (entry.isHeader() || entry.isObsolete) return;
    const auto found = messages_.find(entry.context.value_or(""));
    if (found == messages_.end())
      return report(entry.position, kPoUnknownContext, entry.context.value_or(""));
    if (std::exchange(found->second.file, entry.position.file) == entry.position.file)
      return report(entry.position, kPoRepeatedContext, *entry.context);
    translate(found->second, entry);
  }

 private:
  struct State {
    std::size_t message;
    std::optional<std::size_t> file{};  ///< that has an entry for the message
    bool isTranslated = false;
  };

  void translate(State& state, const PoEntry& entry) {
    SourceMessage& message = source_.messages[state.message];
    const SourceText* const original = translatedText(source_, message, options_.reference);
    const bool isChanged =
        original == nullptr || withPlainBreaks(poText(original->text)) != withPlainBreaks(entry.id);
    if (isChanged) report(entry.idPosition, kPoChangedText, *entry.context);
    if (entry.text.empty() || ((isChanged || entry.hasFlag(kFuzzy)) && !options_.usesFuzzy)) return;
    std::string text = sourceText(entry.text);
    const SourceText* const before = findText(source_, message, language_);
    const bool isSame = before != nullptr && sourceText(poText(before->text)) == text;
    if (std::exchange(state.isTranslated, true) && !isSame)
      return report(entry.position, kPoRepeatedContext, *entry.context);
    if (isSame) return;
    if (const auto mistake = mistakeIn(text)) return report(entry.textPosition, *mistake, *entry.context);
    if (language_ == kNoName) language_ = addLanguage(source_, options_.language);
    setText(source_, message, language_, std::move(text));
    hasChanged_ = true;
  }

  void report(const SourcePosition& position, TextId text, const std::string& argument) {
    addDiagnostic(diagnostics_, {position, text, argument});
  }

  MessageSource& source_;
  const PoImport& options_;
  std::size_t language_;
  Diagnostics& diagnostics_;
  std::map<std::string, State, std::less<>> messages_;
  bool hasChanged_ = false;
};

}  // namespace

bool importPo(MessageSource& source, const PoFile& po, const PoImport& options, Diagnostics& diagnostics) {
  Importer importer(source, options, diagnostics);
  for (const PoEntry& entry : po.entries) importer.add(entry);
  return importer.hasChanged();
}

}  // namespace vel::velmsg
