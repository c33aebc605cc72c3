// Changes to a text that leave everything else in it alone.
#include "inifile/edited_text.h"

#include <cstring>
#include <utility>

#include "inifile/ini_parser.h"
#include "inifile/value_writer.h"

namespace vel::inifile {

namespace {

bool sameOption(const VelClIniFileOption& a, const VelClIniFileOption& b, bool withComment) noexcept {
  return std::strcmp(a.getName(), b.getName()) == 0 && std::strcmp(a.getValue(), b.getValue()) == 0 &&
         (!withComment || std::strcmp(a.getComment(), b.getComment()) == 0);
}

bool sameSection(const VelClIniFileSection& a, const VelClIniFileSection& b,
                 const VelClIniFileOption* changed) noexcept {
  if (std::strcmp(a.getName(), b.getName()) != 0) return false;
  const VelClIniFileOption* left = a.getFirstOption();
  const VelClIniFileOption* right = b.getFirstOption();
  for (; left != nullptr && right != nullptr; left = left->getNext(), right = right->getNext())
    if (!sameOption(*left, *right, left != changed)) return false;
  return left == right;
}

/// The comment of `changed`, an option of `a`, does not count: it may have stood on a line that is gone.
bool sameModel(const VelClIniFile& a, const VelClIniFile& b, const VelClIniFileOption* changed) noexcept {
  const VelClIniFileSection* left = a.getFirstSection();
  const VelClIniFileSection* right = b.getFirstSection();
  for (; left != nullptr && right != nullptr; left = left->getNext(), right = right->getNext())
    if (!sameSection(*left, *right, changed)) return false;
  return left == right;
}

bool isQuoted(Span raw) noexcept {
  return raw.length() > 1 && raw.first() == '"' && raw.end[-1] == '"';
}

const VelClIniFileOption* optionOf(const VelClIniFile& file, const char* section, const char* option) {
  const VelClIniFileSection* const found = file.getExistingSection(section);
  return found != nullptr ? file.getExistingOption(*found, option) : nullptr;
}

}  // namespace

EditedText::EditedText() : model_(read(text_)) {}

void EditedText::take(String text, bool allowContinuation) {
  allowContinuation_ = allowContinuation;
  model_ = read(text);
  text_ = std::move(text);
}

OwnedIniFile EditedText::read(const String& text) const {
  OwnedIniFile file(create<VelClIniFile>(""));
  LineSource lines(text.data(), text.size(), '\n', LineSource::Bytes::Text);
  Parser(*file, true, allowContinuation_).parse(lines);
  return file;
}

/// The first line's, or "\n".
const char* EditedText::lineEnd() const noexcept {
  const std::size_t end = text_.find('\n');
  return end != String::npos && end > 0 && text_[end - 1] == '\r' ? "\r\n" : "\n";
}

bool EditedText::isLineStart(const char* at) const noexcept {
  return at == text_.data() || at[-1] == '\n';
}

/// A last line without end gets one only when another follows.
String EditedText::withLine(const char* at, const String& line, bool blankBefore) const {
  const bool isAtLineStart = isLineStart(at);
  String changed(span().begin, at);
  if (!isAtLineStart) changed += lineEnd();
  if (blankBefore) changed += lineEnd();
  changed += line;
  if (isAtLineStart) changed += lineEnd();
  return changed.append(at, span().end);
}

/// The first line gets the value. Others go, but for their comments.
String EditedText::withValue(const SectionLayout& layout, const char* value) const {
  String changed;
  const char* kept = span().begin;
  for (const ValueLine& line : layout.option) {
    const bool isFirst = &line == &layout.option.front();
    const Span replaced = isFirst || line.hasComment ? line.value : line.whole;
    changed.append(kept, replaced.begin);
    if (isFirst) writeValue(changed, value, isQuoted(line.value));
    kept = replaced.end;
  }
  return changed.append(kept, span().end);
}

String EditedText::withOption(const SectionLayout& layout, const char* option, const char* value) const {
  String line(option);
  if (layout.separator.begin != nullptr)
    line.append(layout.separator.begin, layout.separator.end);
  else
    line += " = ";
  writeValue(line, value, false);
  return withLine(layout.contentEnd, line, false);
}

/// `change` makes the wanted model of the present one; where it is false, or the parser reads another model,
/// the present one is read again.
template <typename Change>
bool EditedText::replaceIf(String changed, Change change) {
  OwnedIniFile wanted = read(text_);
  const VelClIniFileOption* option = nullptr;
  if (!change(*wanted, option)) return false;
  OwnedIniFile read = this->read(changed);
  if (!sameModel(*wanted, *read, option)) return false;
  text_ = std::move(changed);
  model_ = std::move(read);
  return true;
}

bool EditedText::setValue(const char* section, const char* option, const char* value) {
  SectionLayout layout = layoutOf(section, option);
  if (!layout.option.empty())
    return replaceIf(withValue(layout, value), [&](VelClIniFile& file, const VelClIniFileOption*& changed) {
      changed = optionOf(file, section, option);
      return file.getSection(section) && file.setNewValue(option, value);
    });
  const auto add = [&](VelClIniFile& file, const VelClIniFileOption*&) {
    return file.getSection(section) && file.addOption(option, value);
  };
  if (layout.isFound()) return replaceIf(withOption(layout, option, value), add);
  // A refused option takes its new section with it.
  const String before = text_;
  if (!addSection(section)) return false;
  if (replaceIf(withOption(layoutOf(section, option), option, value), add)) return true;
  take(before, allowContinuation_);
  return false;
}

/// A name that is cut when it is read could not be found again.
bool EditedText::addSection(const char* name) {
  if (std::strlen(name) > VelClIniFileSection::kMaxNameLength) return false;
  String line = "[";
  line += name;
  line += "]";
  return replaceIf(withLine(span().end, line, !text_.empty()),
                   [name](VelClIniFile& file, const VelClIniFileOption*&) { return file.addSection(name); });
}

bool EditedText::deleteOption(const char* section, const char* option) {
  const SectionLayout layout = layoutOf(section, option);
  String changed;
  const char* kept = span().begin;
  for (const ValueLine& line : layout.option) {
    changed.append(kept, line.whole.begin);
    kept = line.whole.end;
  }
  changed.append(kept, span().end);
  return replaceIf(std::move(changed), [&](VelClIniFile& file, const VelClIniFileOption*&) {
    return file.getSection(section) && file.deleteOption(option);
  });
}

bool EditedText::deleteSection(const char* name) {
  const SectionLayout layout = layoutOf(name, nullptr);
  if (!layout.isFound()) return false;
  String changed(span().begin, layout.header.begin);
  changed.append(layout.contentEnd, span().end);
  return replaceIf(std::move(changed), [name](VelClIniFile& file, const VelClIniFileOption*&) {
    return file.deleteSection(name);
  });
}

}  // namespace vel::inifile
