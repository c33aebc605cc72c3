// Edits the text of an INI file so that every other byte stays, and proves each change before it counts. A
// change is made twice, on the model with the functions of VelClIniFile, and on the text by rewriting single
// lines:
//
//   text --parse--> model --change--> wanted
//     |                                  must be equal
//     +----rewrite----> changed --parse--> parsed
//
// The change is refused unless both models are equal. So no rule lists the names and values that a file
// cannot hold, or the places that the parser never reaches: whatever the parser would read otherwise is not
// saved. A byte order mark of UTF-8 is kept, but is not part of the first line: the section after it is
// found, unlike by VelClIniFile::load, which would make a change add a second section. Finding lines is
// section_layout.cpp's work, rewriting them text_rewriter.cpp's and text_merger.cpp's.
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

/// Whether the option was set by a merge. Its comment is not compared then: a comment on a continuation line
/// stays in the text, but as a comment line, which belongs to no option.
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

/// Creates a file with one section and one option, so that setting a value is a merge as well. Returns null
/// when the names do not read back from a file, or the value is too long.
OwnedIniFile fileOf(const char* section, const char* option, const char* value) {
  String text = "[";
  text.append(section).append("]\n").append(option).append("=");
  OwnedIniFile file(create<VelClIniFile>(""));
  file->loadFromBuffer(text.data(), text.size(), '\n', true, false);
  const Option* const only = file->getSection(section) ? file->getFirstSection()->getFirstOption() : nullptr;
  const bool isMade = only != nullptr && std::strcmp(only->getName(), option) == 0;
  return isMade && file->setNewValue(option, value) ? std::move(file) : nullptr;
}

/// Merges on the model: of options that repeat, the first one counts, as in the text.
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

IniDocument::IniDocument() : model_(parse(text_, allowContinuation_)) {}

void IniDocument::adopt(String text, bool allowContinuation) {
  // Only parsing can fail: after a failure text, setting and model still belong together.
  model_ = parse(text, allowContinuation);
  allowContinuation_ = allowContinuation;
  text_ = std::move(text);
}

Span IniDocument::bodyOf(const String& text) noexcept {
  Span body{text.data(), text.data() + text.size()};
  body.skipUtf8Mark();
  return body;
}

OwnedIniFile IniDocument::parse(const String& text, bool allowContinuation) {
  OwnedIniFile file(create<VelClIniFile>(""));
  const Span body = bodyOf(text);
  LineSource lines(body.begin, body.length(), '\n', LineSource::Bytes::Text);
  Parser(*file, true, allowContinuation).parse(lines);
  return file;
}

/// The scanner finds the sections in the order of the model, so both advance together. Names would not do:
/// they may repeat.
SectionLayout IniDocument::layoutOf(const Section& wanted) const {
  SectionScanner scanner(body(), allowContinuation_);
  const Section* section = model_->getFirstSection();
  while (scanner.next() && section != &wanted) section = section->getNext();
  return scanner.layout();
}

/// Applies `change` to a copy of the model, and commits `changedBody`, after the byte order mark of the old
/// text, only if parsing it gives that same model. Otherwise, or if `change` returns false, nothing changes
/// and false is returned. `merged` is the source of a merge, or null. The copy is made by parsing the old
/// text again, since a model cannot be copied.
template <typename Change>
bool IniDocument::replaceIf(String changedBody, const VelClIniFile* merged, Change change) {
  const OwnedIniFile wanted = parse(text_, allowContinuation_);
  if (!change(*wanted)) return false;
  changedBody.insert(0, text_.data(), static_cast<std::size_t>(body().begin - text_.data()));
  OwnedIniFile parsed = parse(changedBody, allowContinuation_);
  if (!sameModel(*wanted, *parsed, merged)) return false;
  text_ = std::move(changedBody);
  model_ = std::move(parsed);
  return true;
}

bool IniDocument::setValue(const char* section, const char* option, const char* value) {
  const OwnedIniFile source = fileOf(section, option, value);
  return source != nullptr && merge(*source);
}

bool IniDocument::merge(const VelClIniFile& source) {
  return replaceIf(mergedText(body(), allowContinuation_, *model_, source), &source,
                   [&source](VelClIniFile& file) { return mergeModel(file, source); });
}

/// A longer name would be cut when it is read, and could not be found again.
bool IniDocument::addSection(const char* name) {
  if (std::strlen(name) > Section::kMaxNameLength) return false;
  TextRewriter rewriter(body());
  rewriter.addHeader(name);
  return replaceIf(rewriter.finish(), nullptr, [name](VelClIniFile& file) { return file.addSection(name); });
}

FoundOption IniDocument::findOption(const char* section, const char* option) const {
  Section* const found = model_->getExistingSection(section);
  const Option* const wanted = found != nullptr ? model_->getExistingOption(*found, option) : nullptr;
  if (wanted == nullptr) return {};
  const SectionLayout layout = layoutOf(*found);
  std::span<const ValueLine> lines(layout.lines);
  // The lines of the options are in the order of the model, so those of earlier options are skipped.
  for (const Option* before = found->getFirstOption(); before != wanted; before = before->getNext())
    consumeOptionLines(lines);
  const auto own = consumeOptionLines(lines);
  return {found, wanted, {own.begin(), own.end()}};
}

bool IniDocument::deleteOption(const char* section, const char* option) {
  const FoundOption found = findOption(section, option);
  if (found.option == nullptr) return false;
  TextRewriter rewriter(body());
  for (const ValueLine& line : found.lines) rewriter.remove(line.whole);
  return replaceIf(rewriter.finish(), nullptr, [=](VelClIniFile& file) {
    file.getSection(section);
    return file.deleteOption(option);
  });
}

/// Lines that continue the value become comments, too.
bool IniDocument::commentOutOption(const char* section, const char* option) {
  const FoundOption found = findOption(section, option);
  if (found.option == nullptr) return false;
  TextRewriter rewriter(body());
  for (const ValueLine& line : found.lines) rewriter.replace({line.whole.begin, line.whole.begin}, ";");
  return replaceIf(rewriter.finish(), nullptr, [=](VelClIniFile& file) {
    file.getSection(section);
    return file.deleteOption(option);
  });
}

bool IniDocument::renameOption(const char* section, const char* option, const char* newName) {
  const FoundOption found = findOption(section, option);
  if (found.option == nullptr || *newName == '\0') return false;
  const Option* const other = model_->getExistingOption(*found.section, newName);
  if (other != nullptr && other != found.option) return false;
  Span name = found.lines.front().whole;
  name.end = name.find('=');
  while (name.end != name.begin && isSpace(name.end[-1])) --name.end;
  TextRewriter rewriter(body());
  rewriter.replace(name, newName);
  return replaceIf(rewriter.finish(), nullptr, [&](VelClIniFile& file) {
    Section& wanted = *file.getExistingSection(section);
    auto& renamed = const_cast<Option&>(*file.getExistingOption(wanted, option));
    Model::of(file).renameOption(wanted, renamed, {newName, newName + std::strlen(newName)});
    // A name that leaves too little room for the value or the comment is refused.
    return std::strcmp(renamed.getValue(), found.option->getValue()) == 0 &&
           std::strcmp(renamed.getComment(), found.option->getComment()) == 0;
  });
}

bool IniDocument::renameSection(const char* name, const char* newName) {
  const Section* const found = model_->getExistingSection(name);
  const Section* const other = model_->getExistingSection(newName);
  if (found == nullptr || (other != nullptr && other != found)) return false;
  const std::size_t length = std::strlen(newName);
  if (length == 0 || length > Section::kMaxNameLength) return false;
  TextRewriter rewriter(body());
  rewriter.replace(nameInHeader(layoutOf(*found).header), newName);
  return replaceIf(rewriter.finish(), nullptr, [=](VelClIniFile& file) {
    Model::of(file).renameSection(*file.getExistingSection(name), {newName, newName + std::strlen(newName)});
    return true;
  });
}

bool IniDocument::deleteSection(const char* name) {
  const Section* const found = model_->getExistingSection(name);
  if (found == nullptr) return false;
  const SectionLayout layout = layoutOf(*found);
  TextRewriter rewriter(body());
  rewriter.remove({layout.header.begin, layout.contentEnd});
  return replaceIf(rewriter.finish(), nullptr,
                   [name](VelClIniFile& file) { return file.deleteSection(name); });
}

}  // namespace vel::inifile
