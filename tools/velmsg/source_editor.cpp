// The edits go by lines: a text is whole lines, and the statement before it is the end of a line.
#include "tools/velmsg/source_editor.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "tools/velmsg/source_writer.h"

namespace vel::velmsg {
namespace {

/// What is done before a line, counted from 1.
struct LineEdit {
  std::size_t removed = 0;  ///< number of lines from this one on
  std::string inserted;
};
using LineEdits = std::map<std::size_t, LineEdit>;

std::size_t lineCount(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

void editMessage(const SourceMessage& before, const SourceMessage& wanted, const MessageSource& source,
                 LineEdits& edits) {
  // New texts go before the first one, or after the full stop of the one before them.
  std::size_t place = before.texts.empty() ? before.position.line + 1 : before.texts[0].position.line - 1;
  for (const SourceText& text : wanted.texts) {
    const auto old = std::ranges::find(before.texts, text.language, &SourceText::language);
    if (old == before.texts.end()) {
      edits[place].inserted += "Language=" + source.languages[text.language].name + '\n' + text.text + ".\n";
      continue;
    }
    place = old->position.line + lineCount(old->text) + 1;
    if (old->text == text.text) continue;
    LineEdit& edit = edits[old->position.line];
    edit.removed = lineCount(old->text);
    edit.inserted = text.text;
  }
}

/// New languages go after the last declaration, which is at the end of a line as a rule.
void declareLanguages(const MessageSource& before, const MessageSource& wanted, LineEdits& edits) {
  std::size_t last = 0;
  for (const SourceLanguage& language : before.languages)
    if (language.declared) last = std::max(last, language.position.line);
  for (std::size_t i = before.languages.size(); i < wanted.languages.size(); ++i)
    edits[last + 1].inserted += languageStatement(wanted.languages[i]);
}

/// Appends text with the line ends of the file. A carriage return at the end of a line needs a second one.
void append(std::string& out, std::string_view text, bool hasCrLf) {
  // The last line may have no line end.
  if (!out.empty() && !out.ends_with('\n')) out += hasCrLf ? "\r\n" : "\n";
  for (const char c : text) {
    if (c == '\n' && (hasCrLf || out.ends_with('\r'))) out += '\r';
    out += c;
  }
}

std::string applyEdits(const LineEdits& edits, std::string_view text) {
  const std::size_t firstEnd = text.find('\n');
  const bool hasCrLf = firstEnd != std::string_view::npos && firstEnd > 0 && text[firstEnd - 1] == '\r';
  std::string out;
  auto edit = edits.begin();
  std::size_t removed = 0;
  for (std::size_t number = 1; !text.empty() || edit != edits.end(); ++number) {
    if (edit != edits.end() && (edit->first == number || text.empty())) {
      append(out, edit->second.inserted, hasCrLf);
      removed = edit->second.removed;
      ++edit;
    }
    const std::size_t length = text.empty() ? 0 : std::min(text.find('\n'), text.size() - 1) + 1;
    if (removed == 0)
      out += text.substr(0, length);
    else
      --removed;
    text.remove_prefix(length);
  }
  return out;
}

}  // namespace

std::optional<std::string> editSource(std::string_view text, const MessageSource& before,
                                      const MessageSource& wanted) {
  LineEdits edits;
  declareLanguages(before, wanted, edits);
  for (std::size_t i = 0; i < wanted.messages.size(); ++i)
    editMessage(before.messages[i], wanted.messages[i], wanted, edits);
  std::string edited = applyEdits(edits, text);
  MessageSource read = emptySource();
  Diagnostics diagnostics;
  const bool isSound = readMessageSource("", edited, VelClCCSID(VelClCCSID::CCSID_UTF8), read, diagnostics);
  if (!isSound || writeMessageSource(read) != writeMessageSource(wanted)) return std::nullopt;
  return edited;
}

}  // namespace vel::velmsg
