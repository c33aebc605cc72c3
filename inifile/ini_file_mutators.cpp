// Adds, changes and deletes sections and options of a model in memory. Names and comments that the parser
// would read otherwise are refused here, so that they survive saving and loading. Changing the text of a
// file is ini_document.cpp's work.
#include <algorithm>
#include <cstring>

#include "inifile/model.h"
#include "inifile/option_text.h"
#include "vel_include/vel_inifile.h"

using vel::inifile::isSpace;
using vel::inifile::kMaxNameLength;
using vel::inifile::OptionText;
using vel::inifile::Span;

namespace {

/// A null text counts as "".
Span spanOf(const char* text) {
  return text != nullptr ? Span{text, text + std::strlen(text)} : Span{"", ""};
}

bool isLine(Span text) {
  return text.find('\n') == nullptr;
}

bool isSectionName(Span name) {
  return !name.isEmpty() && name.find(']') == nullptr && isLine(name);
}

/// An option line must not look like a header, a comment line or a continuation line.
bool isOptionName(Span name) {
  const char first = name.first();
  return first != '\0' && first != '[' && first != ';' && name.length() <= kMaxNameLength &&
         std::none_of(name.begin, name.end, [](char c) { return c == '=' || isSpace(c); });
}

/// Appends a value. Returns false when it had to be cut; the buffer is then of no use.
bool appendWhole(OptionText& text, Span value) {
  text.addToValue(value.begin, value.length());
  return text.valueLength() == value.length();
}

}  // namespace

bool VelClIniFile::addSection(const char* name) {
  const Span whole = spanOf(name);
  if (!isSectionName(whole)) return false;
  // A longer name is cut before the search, because the model stores only cut names.
  char cut[VelClIniFileSection::kMaxNameLength + 1] = {};
  const std::size_t length = std::min(whole.length(), sizeof cut - 1);
  std::memcpy(cut, whole.begin, length);
  VelClIniFileSection* const existing = model_->findSection(cut);
  currentSection_ = existing != nullptr ? existing : model_->appendSection({cut, cut + length});
  return existing == nullptr;
}

bool VelClIniFile::deleteSection(const char* name) {
  VelClIniFileSection* const section = model_->findSection(name);
  if (section == nullptr) return false;
  model_->deleteSection(*section);
  return true;
}

bool VelClIniFile::addOption(const char* name, const char* value, const char* comment) {
  const Span nameSpan = spanOf(name);
  const Span commentSpan = spanOf(comment);
  if (currentSection_ == nullptr || !isOptionName(nameSpan) || !isLine(commentSpan)) return false;
  if (model_->findOption(*currentSection_, name) != nullptr) return false;
  OptionText text(nameSpan);
  if (!appendWhole(text, spanOf(value))) return false;
  text.setComment(commentSpan);
  // Unlike a load, which cuts a comment, this refuses one that does not fit: the caller can still react.
  if (std::strlen(text.data() + text.commentOffset()) != commentSpan.length()) return false;
  model_->appendOption(*currentSection_, text);
  return true;
}

bool VelClIniFile::setNewValue(const char* name, const char* value) {
  VelClIniFileOption* const option =
      currentSection_ != nullptr ? model_->findOption(*currentSection_, name) : nullptr;
  if (option == nullptr) return false;
  OptionText text(spanOf(option->getName()));
  if (!appendWhole(text, spanOf(value))) return false;
  // The new value has precedence: the old comment is cut to the room that is left.
  text.setComment(spanOf(option->getComment()));
  model_->replaceText(*option, text);
  return true;
}

bool VelClIniFile::deleteOption(const char* name) {
  VelClIniFileOption* const option =
      currentSection_ != nullptr ? model_->findOption(*currentSection_, name) : nullptr;
  if (option == nullptr) return false;
  model_->deleteOption(*currentSection_, *option);
  return true;
}
