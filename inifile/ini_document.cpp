// Changes to a text that leave everything else in it alone.
#include "inifile/ini_document.h"

#include <cstring>
#include <utility>

#include "inifile/ini_parser.h"
#include "inifile/text_merger.h"
#include "inifile/text_rewriter.h"

namespace vel::inifile {

namespace {

using Section = VelClIniFileSection;
using Option = VelClIniFileOption;

/// The comment of an option that was merged does not count: it may have stood on a line that is gone.
bool isMerged(const VelClIniFile* merged, const Section& section, const Option& option) {
  const Section* const found = merged != nullptr ? merged->getExistingSection(section.getName()) : nullptr;
  return found != nullptr && merged->getExistingOption(*found, option.getName()) != nullptr;
}

bool sameSection(const Section& a, const Section& b, const VelClIniFile* merged) {
  if (std::strcmp(a.getName(), b.getName()) != 0) return false;
  const Option* left = a.getFirstOption();
  const Option* right = b.getFirstOption();
  for (; left != nullptr && right != nullptr; left = left->getNext(), right = right->getNext()) {
    if (std::strcmp(left->getName(), right->getName()) != 0) return false;
    if (std::strcmp(left->getValue(), right->getValue()) != 0) return false;
    if (std::strcmp(left->getComment(), right->getComment()) != 0 && !isMerged(merged, a, *left))
      return false;
  }
  return left == right;
}

bool sameModel(const VelClIniFile& a, const VelClIniFile& b, const VelClIniFile* merged) {
  const Section* left = a.getFirstSection();
  const Section* right = b.getFirstSection();
  for (; left != nullptr && right != nullptr; left = left->getNext(), right = right->getNext())
    if (!sameSection(*left, *right, merged)) return false;
  return left == right;
}

/// A file of this option alone; null when the names or the value are none that a file can hold.
OwnedIniFile fileOf(const char* section, const char* option, const char* value) {
  String text = "[";
  text.append(section).append("]\n").append(option).append("=");
  OwnedIniFile file(create<VelClIniFile>(""));
  file->loadFromBuffer(text.data(), text.size(), '\n', true, false);
  const Option* const only = file->getSection(section) ? file->getFirstSection()->getFirstOption() : nullptr;
  const bool isMade = only != nullptr && std::strcmp(only->getName(), option) == 0;
  return isMade && file->setNewValue(option, value) ? std::move(file) : nullptr;
}

bool mergeSection(VelClIniFile& file, const VelClIniFile& source, const Section& section) {
  if (!file.getSection(section.getName()) && !file.addSection(section.getName())) return false;
  for (const Option* option = section.getFirstOption(); option != nullptr; option = option->getNext())
    if (isFirst(source, section, *option) && !file.setNewValue(option->getName(), option->getValue()) &&
        !file.addOption(option->getName(), option->getValue()))
      return false;
  return true;
}

bool mergeModel(VelClIniFile& file, const VelClIniFile& source) {
  for (const Section* section = source.getFirstSection(); section != nullptr; section = section->getNext())
    if (hasOptions(source, *section) && !mergeSection(file, source, *section)) return false;
  return true;
}

}  // namespace

IniDocument::IniDocument() : model_(parse(text_)) {}

void IniDocument::adopt(String text, bool allowContinuation) {
  allowContinuation_ = allowContinuation;
  model_ = parse(text);
  text_ = std::move(text);
}

OwnedIniFile IniDocument::parse(const String& text) const {
  OwnedIniFile file(create<VelClIniFile>(""));
  LineSource lines(text.data(), text.size(), '\n', LineSource::Bytes::Text);
  Parser(*file, true, allowContinuation_).parse(lines);
  return file;
}

SectionLayout IniDocument::layoutOf(const Section& wanted) const {
  SectionScanner scanner(span(), allowContinuation_);
  const Section* section = model_->getFirstSection();
  while (scanner.next() && section != &wanted) section = section->getNext();
  return scanner.layout();
}

/// `change` makes the wanted model of the present one; where it is false, or the parser reads another model
/// in the changed text, everything stays.
template <typename Change>
bool IniDocument::replaceIf(String changed, const VelClIniFile* merged, Change change) {
  const OwnedIniFile wanted = parse(text_);
  if (!change(*wanted)) return false;
  OwnedIniFile parsed = parse(changed);
  if (!sameModel(*wanted, *parsed, merged)) return false;
  text_ = std::move(changed);
  model_ = std::move(parsed);
  return true;
}

bool IniDocument::setValue(const char* section, const char* option, const char* value) {
  const OwnedIniFile source = fileOf(section, option, value);
  return source != nullptr && merge(*source);
}

bool IniDocument::merge(const VelClIniFile& source) {
  return replaceIf(mergedText(span(), allowContinuation_, *model_, source), &source,
                   [&source](VelClIniFile& file) { return mergeModel(file, source); });
}

/// A name that is cut when it is read could not be found again.
bool IniDocument::addSection(const char* name) {
  if (std::strlen(name) > Section::kMaxNameLength) return false;
  TextRewriter rewriter(span());
  rewriter.addHeader(name);
  return replaceIf(rewriter.finish(), nullptr, [name](VelClIniFile& file) { return file.addSection(name); });
}

bool IniDocument::deleteOption(const char* section, const char* option) {
  const Section* const found = model_->getExistingSection(section);
  const Option* const wanted = found != nullptr ? model_->getExistingOption(*found, option) : nullptr;
  if (wanted == nullptr) return false;
  const SectionLayout layout = layoutOf(*found);
  std::span<const ValueLine> lines(layout.lines);
  for (const Option* before = found->getFirstOption(); before != wanted; before = before->getNext())
    consumeOptionLines(lines);
  TextRewriter rewriter(span());
  for (const ValueLine& line : consumeOptionLines(lines)) rewriter.remove(line.whole);
  return replaceIf(rewriter.finish(), nullptr, [=](VelClIniFile& file) {
    file.getSection(section);
    return file.deleteOption(option);
  });
}

bool IniDocument::deleteSection(const char* name) {
  const Section* const found = model_->getExistingSection(name);
  if (found == nullptr) return false;
  const SectionLayout layout = layoutOf(*found);
  TextRewriter rewriter(span());
  rewriter.remove({layout.header.begin, layout.contentEnd});
  return replaceIf(rewriter.finish(), nullptr,
                   [name](VelClIniFile& file) { return file.deleteSection(name); });
}

}  // namespace vel::inifile
