// Edits any text in any dialect of velini: an edit changes what it is for and no other byte, a refused edit
// changes nothing. The input is a byte for the edit, a byte for the dialect, a section's name, an option's
// name and a value, each NUL-terminated, and the text.
#include <map>

#include "fuzz/bytes.h"
#include "tools/velini/diff.h"
#include "tools/velini/document.h"

namespace fuzz::inifile_dialect {

namespace {

using namespace vel::velini;

constexpr const char* kDialects[] = {"git", "systemd", "php", "python", "desktop"};

/// The values of each option by the keys of section and option.
using ValueLists = std::map<std::pair<std::string, std::string>, std::vector<std::string>>;

ValueLists valuesOf(const Records& records) {
  ValueLists values;
  for (const Section& section : records.sections)
    for (const Option& option : section.options) values[{section.key, option.key}].push_back(option.value);
  return values;
}

/// Makes the edit on the values alone.
void applyTo(ValueLists& values, const Dialect& dialect, const Edit& edit) {
  const std::string section = keyOf(dialect.sections, edit.section);
  const std::pair key(section, keyOf(dialect.options, edit.option));
  switch (edit.kind) {
    case EditKind::Set:
      values[key] = {edit.value};
      break;
    case EditKind::Add:
      values[key].push_back(edit.value);
      break;
    case EditKind::Delete:
    case EditKind::CommentOut:
      values.erase(key);
      break;
    case EditKind::DeleteSection:
      std::erase_if(values, [&](const auto& entry) { return entry.first.first == section; });
      break;
    case EditKind::Rename: {
      auto node = values.extract(key);
      require(!node.empty());
      node.key().second = keyOf(dialect.options, edit.value);
      require(values.insert(std::move(node)).inserted);
      break;
    }
    case EditKind::RenameSection: {
      ValueLists renamed;
      for (const auto& [old, list] : values)
        renamed[{old.first == section ? keyOf(dialect.sections, edit.value) : old.first, old.second}] = list;
      values = renamed;
      break;
    }
  }
}

/// Whether all characters of `part` are in `whole` in the same order.
bool isSubsequence(std::string_view part, std::string_view whole) {
  for (const char c : whole)
    if (!part.empty() && part.front() == c) part.remove_prefix(1);
  return part.empty();
}

/// What edits only add and what they only remove.
void checkBytes(EditKind kind, const std::string& before, std::string_view after) {
  if (kind == EditKind::Add || kind == EditKind::CommentOut) require(isSubsequence(before, after));
  if (kind == EditKind::Delete || kind == EditKind::DeleteSection) require(isSubsequence(after, before));
  if (kind == EditKind::CommentOut) require(after.size() > before.size());
}

/// Whatever is in the text, two files are compared in every form.
void checkDifferences(const Records& before, const Records& after, bool areEqual) {
  for (const Form form : {Form::Plain, Form::Ini, Form::Json}) {
    std::ostringstream out;
    require(writeDifferences(out, form, before, after, nullptr) != areEqual);
    require({!out.str().empty() || areEqual, !writeDifferences(out, form, after, after, nullptr)});
  }
}

void run(Bytes bytes) {
  const auto kind = static_cast<EditKind>(bytes.byte() % 7);
  const Dialect& dialect = *dialectOf(kDialects[bytes.byte() % std::size(kDialects)]);
  Edit edit{kind, "", "", ""};
  for (std::string* part : {&edit.section, &edit.option, &edit.value}) *part = bytes.text();
  const std::string text(bytes.rest());
  const auto document = dialectDocument(dialect, text);
  const Records before = document->records();
  require(document->text() == text);
  document->faults();
  ValueLists wanted = valuesOf(before);
  const EditResult result = document->apply(edit);
  const Records after = document->records();
  if (result != EditResult::Done)
    return require({document->text() == text, after.sections == before.sections});
  applyTo(wanted, dialect, edit);
  require(valuesOf(after) == wanted);
  checkBytes(kind, text, document->text());
  require(dialectDocument(dialect, std::string(document->text()))->records().sections == after.sections);
  const bool changesSections = kind == EditKind::DeleteSection || kind == EditKind::RenameSection;
  if (!changesSections) checkDifferences(before, after, valuesOf(before) == wanted);
}

const Target target("inifile_dialect", run);

}  // namespace

}  // namespace fuzz::inifile_dialect
