// The dialect of VelClIniFile: the library edits, and its parser finds the faults.
#include <algorithm>

#include "inifile/text_rules.h"
#include "tools/velini/document.h"

namespace vel::velini {

namespace {

TextId textOf(const _VelStError& error) {
  if (error.getErrorId() == INIFILE_INVAL_SECTION) return kNoClosingBracket;
  return error.getErrorId() == INIFILE_INVAL_OPTION ? kNoEqualSign : kNothingContinued;
}

bool collectError(const _VelStError& error, unsigned int line, void* faults) {
  static_cast<std::vector<Fault>*>(faults)->push_back({line, textOf(error)});
  return true;
}

/// Returns the text as the load of a file passes it to the parser: without "\r" before a line break.
std::string parsedText(std::string_view text) {
  if (hasUtf8Mark(text)) text.remove_prefix(std::string_view(inifile::kUtf8Mark).size());
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (!text.substr(i).starts_with("\r\n")) lines += text[i];
  return lines;
}

class LibraryDocument : public Document {
 public:
  LibraryDocument(VelClIniFileEditor& editor, bool allowContinuation)
      : editor_(editor), allowContinuation_(allowContinuation) {}

  std::string_view text() const override { return {editor_.getText(), editor_.getLength()}; }
  Records records() const override { return recordsOf(file()); }
  std::vector<Fault> faults() const override;
  EditResult apply(const Edit& edit) override;
  EditResult merge(const Document& source, std::string& name) override;

 private:
  const VelClIniFile& file() const { return editor_.getIniFile(); }
  EditResult obstacle(const Edit& edit) const;
  bool makes(const Edit& edit);
  std::string refusedOption(const VelClIniFile& source);

  VelClIniFileEditor& editor_;
  bool allowContinuation_;
};

/// Parses the text a second time, with a handler that collects the errors. The library reports no error for a
/// line that is too long: it stops reading there, which shows in the count of lines.
std::vector<Fault> LibraryDocument::faults() const {
  std::vector<Fault> faults = faultsBeforeSection(text());
  // The bytes of UTF-16 would make every line a syntax error.
  if (isWide(text())) return faults;
  const std::string lines = parsedText(text());
  VelClIniFile parsed("");
  parsed.setErrorHandler(collectError, &faults);
  parsed.loadFromBuffer(lines.data(), lines.size(), '\n', true, allowContinuation_);
  const auto breaks = static_cast<std::size_t>(std::ranges::count(lines, '\n'));
  const std::size_t lastBreak = lines.rfind('\n');
  const std::size_t lastLength = lines.size() - (lastBreak == std::string::npos ? 0 : lastBreak + 1);
  if (parsed.getLineCount() <= breaks || lastLength > inifile::kMaxLineLength)
    faults.push_back({parsed.getLineCount(), kLineTooLong});
  addByteFaults(text(), kLineWithNul, false, faults);
  return faults;
}

/// Returns why the edit cannot be made, to tell that from a change that was refused.
EditResult LibraryDocument::obstacle(const Edit& edit) const {
  const Records all = records();
  const Section* const section = all.find(edit.section);
  const Option* const option = section != nullptr ? all.find(*section, edit.option) : nullptr;
  switch (edit.kind) {
    case EditKind::Set:
      return EditResult::Done;
    case EditKind::Add:
      return option != nullptr ? EditResult::Exists : EditResult::Done;
    case EditKind::DeleteSection:
      return section == nullptr ? EditResult::NotFound : EditResult::Done;
    case EditKind::RenameSection: {
      const Section* const other = all.find(edit.value);
      if (section == nullptr) return EditResult::NotFound;
      return other != nullptr && other != section ? EditResult::Exists : EditResult::Done;
    }
    default:
      break;
  }
  if (option == nullptr) return EditResult::NotFound;
  const Option* const other = edit.kind == EditKind::Rename ? all.find(*section, edit.value) : nullptr;
  return other != nullptr && other != option ? EditResult::Exists : EditResult::Done;
}

bool LibraryDocument::makes(const Edit& edit) {
  const char *const section = edit.section.c_str(), *const option = edit.option.c_str();
  switch (edit.kind) {
    case EditKind::Delete:
      return editor_.deleteOption(section, option);
    case EditKind::DeleteSection:
      return editor_.deleteSection(section);
    case EditKind::Rename:
      return editor_.renameOption(section, option, edit.value.c_str());
    case EditKind::RenameSection:
      return editor_.renameSection(section, edit.value.c_str());
    case EditKind::CommentOut:
      return editor_.commentOutOption(section, option);
    default:
      return editor_.setValue(section, option, edit.value.c_str());
  }
}

EditResult LibraryDocument::apply(const Edit& edit) {
  const EditResult found = obstacle(edit);
  if (found != EditResult::Done) return found;
  return makes(edit) ? EditResult::Done : EditResult::Refused;
}

/// Returns the name of the first option that cannot be set by itself, or "". For the report of a refused
/// merge, which does not tell the option; the editor is not saved afterwards.
std::string LibraryDocument::refusedOption(const VelClIniFile& source) {
  for (auto* section = source.getFirstSection(); section != nullptr; section = section->getNext())
    for (auto* option = section->getFirstOption(); option != nullptr; option = option->getNext())
      if (!editor_.setValue(section->getName(), option->getName(), option->getValue()))
        return option->getName();
  return "";
}

EditResult LibraryDocument::merge(const Document& source, std::string& name) {
  const VelClIniFile& other = static_cast<const LibraryDocument&>(source).file();
  if (editor_.merge(other)) return EditResult::Done;
  const std::string refused = refusedOption(other);
  if (!refused.empty()) name = refused;
  return EditResult::Refused;
}

}  // namespace

std::unique_ptr<Document> libraryDocument(VelClIniFileEditor& editor, bool allowContinuation) {
  return std::make_unique<LibraryDocument>(editor, allowContinuation);
}

}  // namespace vel::velini
