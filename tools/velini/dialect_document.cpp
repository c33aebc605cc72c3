// Edits a text by the rules of a dialect. As in the library's editor, an edit is made twice: on the records,
// and on the text by replacing ranges of its bytes. It counts only if the new text reads back as the new
// records, so names and values that the dialect cannot hold need no list of their own.
#include <algorithm>
#include <map>
#include <unordered_map>

#include "tools/velini/dialect_layout.h"
#include "tools/velini/dialect_values.h"
#include "tools/velini/document.h"

namespace vel::velini {

namespace {

using inifile::isSpace;

/// Bytes that replace a range of the text.
struct Splice {
  Range old;
  std::string text;
};

/// What a merge or a single edit sets.
struct Setting {
  std::string section;
  std::string option;
  std::string value;
  bool isEvaluated = false;  ///< see ValueStyle
};

/// All options of a key: how many there are, and the places of the last one in the records and in the text.
struct Known {
  std::size_t count = 0;
  std::size_t section = 0;
  std::size_t option = 0;
  const OptionPlace* place = nullptr;
};
using KnownOptions = std::unordered_map<std::string, Known>;

std::string keyIn(const std::string& section, const std::string& option) {
  return section + '\n' + option;
}

KnownOptions knownOptions(const Layout& layout, const Records& records) {
  KnownOptions known;
  for (const OptionPlace& place : layout.options) {
    Known& entry = known[keyIn(layout.sections[place.section].key, place.option.key)];
    entry.place = &place;
    ++entry.count;
  }
  for (std::size_t i = 0; i < records.sections.size(); ++i)
    for (std::size_t k = 0; k < records.sections[i].options.size(); ++k) {
      Known& entry = known[keyIn(records.sections[i].key, records.sections[i].options[k].key)];
      entry.section = i;
      entry.option = k;
    }
  return known;
}

/// How new options of a section look, and their lines.
struct NewOptions {
  std::string indentation;
  std::string separator;
  std::vector<std::string> lines;
};

/// A change under construction.
struct Change {
  Records wanted;
  std::vector<Splice> splices;
  std::map<const SectionPlace*, NewOptions> added;  ///< after the content of a section
  std::vector<std::string> atEnd;                   ///< lines of new sections
};

class DialectDocument : public Document {
 public:
  DialectDocument(const Dialect& dialect, std::string text) : dialect_(dialect) { adopt(std::move(text)); }

  std::string_view text() const override { return text_; }
  Records records() const override { return records_; }
  std::vector<Fault> faults() const override;
  EditResult apply(const Edit& edit) override;
  EditResult merge(const Document& source, std::string& name) override;

 private:
  using Places = std::vector<const OptionPlace*>;

  void adopt(std::string text);
  bool addsNamelessSection(const Records& wanted) const;
  EditResult commit(std::vector<Splice> splices, Records wanted);

  Places placesOf(const Edit& edit) const;
  Section* sectionOf(Records& records, const std::string& name) const;
  EditResult set(const std::vector<Setting>& settings, bool adds, std::string& name);
  void add(const Setting& setting, Change& change) const;
  EditResult remove(const Edit& edit, bool isCommentedOut);
  EditResult rename(const Edit& edit);
  EditResult removeSection(const Edit& edit);
  EditResult renameSection(const Edit& edit);

  std::vector<Setting> settings() const;
  Splice newValue(const OptionPlace& place, const Setting& setting) const;
  NewOptions styleOf(const SectionPlace* section) const;
  std::string newOption(const NewOptions& style, const Setting& setting) const;
  Splice addedLines(std::size_t at, const std::vector<std::string>& lines) const;
  void commentOut(const OptionPlace& place, std::vector<Splice>& splices) const;
  std::string indentationOf(const OptionPlace& place) const;
  const char* lineEnd() const;

  const Dialect& dialect_;
  std::string text_;
  Layout layout_;
  Records records_;
};

void DialectDocument::adopt(std::string text) {
  text_ = std::move(text);
  layout_ = layoutOf(dialect_, text_);
  records_ = recordsOf(dialect_, layout_);
}

std::vector<Fault> DialectDocument::faults() const {
  if (isWide(text_)) return {{1, kWideText}};
  std::vector<Fault> faults = layout_.faults;
  // Strings of PHP may contain carriage returns.
  const bool ignoresReturns = dialect_.values == Values::Php && text_.find('\n') != std::string::npos;
  addByteFaults(text_, kNulByte, ignoresReturns, faults);
  return faults;
}

/// Some programs take a lone carriage return for the end of the line, so that the rest of a value would
/// become another option, and others for a blank.
bool hasLoneReturn(std::string_view text) {
  return findLoneReturn(text) != std::string_view::npos;
}

/// Few programs can read "[]". One that is in the file already is left.
bool DialectDocument::addsNamelessSection(const Records& wanted) const {
  const auto isNameless = [](const Section& section) { return section.name.empty(); };
  return !dialect_.hasOptionsBeforeSections && std::ranges::any_of(wanted.sections, isNameless) &&
         std::ranges::none_of(records_.sections, isNameless);
}

/// The splices may be in any order, but must not overlap.
EditResult DialectDocument::commit(std::vector<Splice> splices, Records wanted) {
  if (addsNamelessSection(wanted)) return EditResult::Refused;
  // A string in the quotes of PHP may contain it.
  if (dialect_.values != Values::Php &&
      std::ranges::any_of(splices, [](const Splice& splice) { return hasLoneReturn(splice.text); }))
    return EditResult::Refused;
  std::ranges::stable_sort(splices, {}, [](const Splice& splice) { return splice.old.begin; });
  std::string changed;
  std::size_t kept = 0;
  for (const Splice& splice : splices) {
    changed.append(text_, kept, splice.old.begin - kept).append(splice.text);
    kept = splice.old.end;
  }
  changed.append(text_, kept);
  wanted.complete();
  if (recordsOf(dialect_, layoutOf(dialect_, changed)).sections != wanted.sections)
    return EditResult::Refused;
  adopt(std::move(changed));
  return EditResult::Done;
}

// ---- Finding

DialectDocument::Places DialectDocument::placesOf(const Edit& edit) const {
  const std::string section = keyOf(dialect_.sections, edit.section);
  const std::string option = keyOf(dialect_.options, edit.option);
  Places places;
  for (const OptionPlace& place : layout_.options)
    if (place.option.key == option && layout_.sections[place.section].key == section)
      places.push_back(&place);
  return places;
}

Section* DialectDocument::sectionOf(Records& records, const std::string& name) const {
  const auto found = std::ranges::find(records.sections, keyOf(dialect_.sections, name), &Section::key);
  return found != records.sections.end() ? &*found : nullptr;
}

std::string DialectDocument::indentationOf(const OptionPlace& place) const {
  return place.isInHeader ? "" : text_.substr(place.whole.begin, place.name.begin - place.whole.begin);
}

/// The first line decides, as in the library's editor.
const char* DialectDocument::lineEnd() const {
  const Line first = lineAt(text_, 0);
  return first.next - first.end == 2 ? "\r\n" : "\n";
}

// ---- Pieces of text

bool isInQuotes(std::string_view raw) {
  return raw.size() > 1 && raw.front() == '"' && raw.back() == '"';
}

/// Comment lines between the lines of the old value come after the new one.
Splice DialectDocument::newValue(const OptionPlace& place, const Setting& setting) const {
  std::string text;
  const std::string_view separator = Range{place.name.end, place.value.begin}.in(text_);
  if (place.isBare)
    text = dialect_.separator;
  else if (isSpace(separator.front()) && !isSpace(separator.back()) &&
           lineAt(text_, place.value.begin).end == place.value.begin)
    text = " ";  // "name =" gets a blank on the other side, too
  text +=
      writtenValue(dialect_, setting.value,
                   {isInQuotes(place.value.in(text_)), setting.isEvaluated, indentationOf(place), lineEnd()});
  for (const Range& comment : place.comments) {
    const Line line = lineAt(text_, comment.begin);
    text.append(lineEnd()).append(text_, line.begin, line.end - line.begin);
  }
  return {place.value, text};
}

/// New options look like the last one of the section.
NewOptions DialectDocument::styleOf(const SectionPlace* section) const {
  NewOptions style{dialect_.indentation, dialect_.separator, {}};
  if (section == nullptr) return style;
  for (const OptionPlace& place : layout_.options) {
    if (&layout_.sections[place.section] != section || place.isInHeader) continue;
    style.indentation = indentationOf(place);
    if (!place.value.isEmpty()) style.separator = Range{place.name.end, place.value.begin}.in(text_);
  }
  return style;
}

std::string DialectDocument::newOption(const NewOptions& style, const Setting& setting) const {
  return style.indentation + setting.option + style.separator +
         writtenValue(dialect_, setting.value, {false, setting.isEvaluated, style.indentation, lineEnd()});
}

/// If the text ends without a line break, it still does so afterwards.
Splice DialectDocument::addedLines(std::size_t at, const std::vector<std::string>& lines) const {
  const bool isLineStart =
      at == (hasUtf8Mark(text_) ? std::string_view(inifile::kUtf8Mark).size() : 0) || text_[at - 1] == '\n';
  std::string text;
  for (const std::string& line : lines) text += isLineStart ? line + lineEnd() : lineEnd() + line;
  return {{at, at}, text};
}

void DialectDocument::commentOut(const OptionPlace& place, std::vector<Splice>& splices) const {
  const auto isComment = [&place](std::size_t at) {
    return std::ranges::find(place.comments, at, &Range::begin) != place.comments.end();
  };
  for (std::size_t at = place.whole.begin; at < place.whole.end; at = lineAt(text_, at).next) {
    const Line line = lineAt(text_, at);
    if (isComment(at) || skipBlanks(text_, {line.begin, line.end}) == line.end) continue;
    const std::size_t mark = at == place.whole.begin && place.isInHeader ? place.name.begin : at;
    splices.push_back({{mark, mark}, std::string(1, dialect_.comments[0])});
  }
}

// ---- Edits

void DialectDocument::add(const Setting& setting, Change& change) const {
  const std::string key = keyOf(dialect_.sections, setting.section);
  const auto last =
      std::ranges::find(layout_.sections.rbegin(), layout_.sections.rend(), key, &SectionPlace::key);
  Section* target = sectionOf(change.wanted, setting.section);
  if (last != layout_.sections.rend()) {
    auto options = change.added.find(&*last);
    if (options == change.added.end()) options = change.added.emplace(&*last, styleOf(&*last)).first;
    options->second.lines.push_back(newOption(options->second, setting));
  } else {
    if (target == nullptr) {
      if (!text_.empty() || !change.atEnd.empty()) change.atEnd.emplace_back();
      change.atEnd.push_back(writtenHeader(dialect_, setting.section));
      change.wanted.sections.push_back({setting.section, {}, key, true});
      target = &change.wanted.sections.back();
    }
    change.atEnd.push_back(newOption(styleOf(nullptr), setting));
  }
  target->options.push_back(
      {setting.option, setting.value, "", keyOf(dialect_.options, setting.option), true});
}

EditResult DialectDocument::set(const std::vector<Setting>& settings, bool adds, std::string& name) {
  Change change{records_, {}, {}, {}};
  std::vector<Section>& sections = change.wanted.sections;
  // So that the indexes of sections do not change when it gets an option.
  if (dialect_.hasOptionsBeforeSections && sectionOf(change.wanted, "") == nullptr)
    sections.insert(sections.begin(), Section{});
  const KnownOptions known = knownOptions(layout_, change.wanted);
  for (const Setting& setting : settings) {
    name = setting.option;
    const auto found =
        known.find(keyIn(keyOf(dialect_.sections, setting.section), keyOf(dialect_.options, setting.option)));
    if (found == known.end() || (adds && dialect_.mayRepeat)) {
      add(setting, change);
      continue;
    }
    const Known& option = found->second;
    if (adds) return EditResult::Exists;
    if (option.count > 1) return EditResult::Repeated;
    change.splices.push_back(newValue(*option.place, setting));
    sections[option.section].options[option.option].value = setting.value;
  }
  for (const auto& [section, options] : change.added)
    change.splices.push_back(addedLines(section->contentEnd, options.lines));
  if (!change.atEnd.empty()) change.splices.push_back(addedLines(text_.size(), change.atEnd));
  return commit(std::move(change.splices), std::move(change.wanted));
}

EditResult DialectDocument::remove(const Edit& edit, bool isCommentedOut) {
  const Places places = placesOf(edit);
  if (places.empty()) return EditResult::NotFound;
  std::vector<Splice> splices;
  for (const OptionPlace* place : places) {
    if (isCommentedOut) {
      commentOut(*place, splices);
      continue;
    }
    std::string kept;
    for (const Range& comment : place->comments) kept += comment.in(text_);
    splices.push_back({place->whole, kept});
  }
  Records wanted = records_;
  std::erase_if(sectionOf(wanted, edit.section)->options,
                [&](const Option& option) { return option.key == places[0]->option.key; });
  return commit(std::move(splices), std::move(wanted));
}

EditResult DialectDocument::rename(const Edit& edit) {
  const Places places = placesOf(edit);
  if (places.empty()) return EditResult::NotFound;
  const std::string oldKey = places[0]->option.key, newKey = keyOf(dialect_.options, edit.value);
  Records wanted = records_;
  Section& section = *sectionOf(wanted, edit.section);
  if (newKey != oldKey && section.find(newKey) != nullptr) return EditResult::Exists;
  std::vector<Splice> splices;
  for (const OptionPlace* place : places) splices.push_back({place->name, edit.value});
  for (Option& option : section.options) {
    if (option.key != oldKey) continue;
    option.name = edit.value;
    option.key = newKey;
  }
  return commit(std::move(splices), std::move(wanted));
}

EditResult DialectDocument::removeSection(const Edit& edit) {
  const std::string key = keyOf(dialect_.sections, edit.section);
  std::vector<Splice> splices;
  for (const SectionPlace& place : layout_.sections)
    if (place.key == key) splices.push_back({{place.header.begin, place.contentEnd}, ""});
  Records wanted = records_;
  if (std::erase_if(wanted.sections, [&](const Section& section) { return section.key == key; }) == 0)
    return EditResult::NotFound;
  return commit(std::move(splices), std::move(wanted));
}

EditResult DialectDocument::renameSection(const Edit& edit) {
  const std::string oldKey = keyOf(dialect_.sections, edit.section),
                    newKey = keyOf(dialect_.sections, edit.value);
  Records wanted = records_;
  Section* const section = sectionOf(wanted, edit.section);
  if (section == nullptr) return EditResult::NotFound;
  if (newKey != oldKey && sectionOf(wanted, edit.value) != nullptr) return EditResult::Exists;
  if (edit.value.empty()) return EditResult::Refused;
  std::vector<Splice> splices;
  for (const SectionPlace& place : layout_.sections)
    if (place.key == oldKey) splices.push_back({place.written, writtenSection(dialect_, edit.value)});
  section->name = edit.value;
  section->key = newKey;
  return commit(std::move(splices), std::move(wanted));
}

EditResult DialectDocument::apply(const Edit& edit) {
  std::string name;
  switch (edit.kind) {
    case EditKind::Delete:
      return remove(edit, false);
    case EditKind::CommentOut:
      return remove(edit, true);
    case EditKind::DeleteSection:
      return removeSection(edit);
    case EditKind::Rename:
      return rename(edit);
    case EditKind::RenameSection:
      return renameSection(edit);
    default:
      return set({{edit.section, edit.option, edit.value}}, edit.kind == EditKind::Add, name);
  }
}

/// Returns the options that count.
std::vector<Setting> DialectDocument::settings() const {
  const KnownOptions known = knownOptions(layout_, records_);
  std::vector<Setting> settings;
  for (const Section& section : records_.sections)
    for (const Option& option : section.options) {
      if (!option.counts) continue;
      const OptionPlace& place = *known.at(keyIn(section.key, option.key)).place;
      const bool hasString = place.value.in(text_).find_first_of("\"'") != std::string_view::npos;
      settings.push_back({section.name, option.name, option.value, !hasString});
    }
  return settings;
}

EditResult DialectDocument::merge(const Document& source, std::string& name) {
  std::string refused = name;
  const EditResult result = set(static_cast<const DialectDocument&>(source).settings(), false, refused);
  // Only these two are about one option.
  if (result == EditResult::Repeated || result == EditResult::Exists) name = refused;
  return result;
}

}  // namespace

std::unique_ptr<Document> dialectDocument(const Dialect& dialect, std::string text) {
  return std::make_unique<DialectDocument>(dialect, std::move(text));
}

}  // namespace vel::velini
