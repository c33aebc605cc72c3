// Reads a text line by line: each line that is neither blank nor a comment begins with a header or an option,
// and the value of an option may have further lines. What is malformed is reported and skipped; its bytes
// stay in the text, like all that have no place here.
#include "tools/velini/dialect_layout.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "tools/velini/dialect_values.h"

namespace vel::velini {

namespace {

class LayoutReader {
 public:
  LayoutReader(const Dialect& dialect, std::string_view text)
      : dialect_(dialect), text_(text), values_(dialect, text) {}

  Layout read() {
    if (hasUtf8Mark(text_)) {
      start_ = std::string_view(inifile::kUtf8Mark).size();
      if (!dialect_.skipsMark) report(0, kByteOrderMark);
    }
    const Range before{start_, start_};
    if (dialect_.hasOptionsBeforeSections) layout_.sections.push_back({"", "", before, before, start_});
    std::size_t at = start_;
    while (at < text_.size()) {
      const Line line = lineAt(text_, at);
      const std::size_t first = skipBlanks(text_, {at, line.end});
      if (first == line.end || isComment(dialect_, text_[first]))
        at = line.next;
      else
        at = text_[first] == '[' ? readHeader(first, line) : readOption(first, line);
    }
    if (!dialect_.mayRepeat) reportRepeats();
    countLines();
    return std::move(layout_);
  }

 private:
  void report(std::size_t at, TextId fault) { faults_.push_back({at, fault}); }

  /// Whether the position is after a header in the same line.
  bool isInHeader(std::size_t at) const { return at > start_ && text_[at - 1] != '\n'; }

  void extendSection(std::size_t end) {
    if (!layout_.sections.empty()) layout_.sections.back().contentEnd = end;
  }

  // ---- Headers

  /// Returns where to read on: after the header if more than a comment follows it in its line.
  std::size_t readHeader(std::size_t first, const Line& line) {
    SectionPlace section;
    const std::size_t end = dialect_.hasSubsections ? readSubsection({first, line.end}, section)
                                                    : readName({first, line.end}, section);
    if (end == 0) {
      report(first, kNoClosingBracket);
      extendSection(line.next);
      return line.next;
    }
    if (section.name.empty() && !dialect_.hasOptionsBeforeSections) report(first, kBadName);
    const std::size_t after = skipBlanks(text_, {end, line.end});
    const bool hasMore = dialect_.hasSubsections && after != line.end && !isComment(dialect_, text_[after]);
    section.header = {isInHeader(line.begin) ? first : line.begin, hasMore ? end : line.next};
    section.contentEnd = section.header.end;
    // A header can be in the line of the one before it.
    if (!layout_.sections.empty() && layout_.sections.back().contentEnd > section.header.begin)
      extendSection(section.header.begin);
    layout_.sections.push_back(std::move(section));
    return layout_.sections.back().header.end;
  }

  /// Returns the end of the header, 0 if it is malformed.
  std::size_t readName(Range line, SectionPlace& section) const {
    const std::string_view text = line.in(text_);
    const std::size_t bracket = dialect_.endsAtLastBracket ? text.rfind(']') : text.find(']');
    if (bracket == std::string_view::npos) return 0;
    section.written = {line.begin + 1, line.begin + bracket};
    section.name = section.written.in(text_);
    section.key = keyOf(dialect_.sections, section.name);
    return line.begin + bracket + 1;
  }

  /// Reads [name "subsection"], [name] or, without regard to case, [name.subsection].
  std::size_t readSubsection(Range line, SectionPlace& section) const {
    std::size_t at = line.begin + 1;
    while (at < line.end && (isNameCharacter(text_[at]) || text_[at] == '.')) ++at;
    section.name = text_.substr(line.begin + 1, at - line.begin - 1);
    section.key = keyOf(Names::AnyCase, section.name);
    if (section.name.find('.') != std::string::npos) section.name = section.key;
    const std::size_t blank = at;
    at = skipBlanks(text_, {at, line.end});
    if (at != blank) {
      std::string subsection;
      at = readString({at, line.end}, subsection);
      if (at == 0) return 0;
      section.name += '.' + subsection;
      section.key += '.' + subsection;
    }
    if (at == line.end || text_[at] != ']') return 0;
    section.written = {line.begin + 1, at};
    return at + 1;
  }

  /// Reads a string in double quotes. Returns its end, 0 if there is no string.
  std::size_t readString(Range line, std::string& content) const {
    if (line.isEmpty() || text_[line.begin] != '"') return 0;
    for (std::size_t at = line.begin + 1; at < line.end; ++at) {
      if (text_[at] == '"') return at + 1;
      if (text_[at] == '\\' && ++at == line.end) return 0;
      content += text_[at];
    }
    return 0;
  }

  // ---- Options

  std::size_t readOption(std::size_t first, const Line& line) {
    const std::size_t separator =
        std::min(text_.substr(0, line.end).find_first_of(dialect_.separators, first), line.end);
    const bool isBare = separator == line.end;
    const Range name = trimmed(text_, {first, separator});
    OptionPlace place{};
    place.name = name;
    place.isBare = isBare;
    place.option.name = name.in(text_);
    place.option.key = keyOf(dialect_.options, place.option.name);
    ReadValue value;
    if (isBare) {
      value.raw = {name.end, name.end};
      value.next = line.next;
    } else {
      value = values_.read(separator + 1, first - line.begin);
    }
    const std::optional<TextId> fault = faultOf(place, value);
    if (fault.has_value()) report(first, *fault);
    const std::size_t next = value.next;
    if (fault.value_or(kMalformedValue) == kMalformedValue)
      addOption(std::move(place), std::move(value), line);
    extendSection(next);
    return next;
  }

  std::optional<TextId> faultOf(const OptionPlace& place, const ReadValue& value) const {
    if (layout_.sections.empty()) return kNoSectionYet;
    if (place.isBare && dialect_.bareValue == nullptr) return kNoEqualSign;
    if (!isOptionName(dialect_, place.option.name)) return kBadName;
    return value.isMalformed ? std::optional(kMalformedValue) : std::nullopt;
  }

  void addOption(OptionPlace place, ReadValue value, const Line& line) {
    place.section = layout_.sections.size() - 1;
    place.isInHeader = isInHeader(line.begin);
    place.whole = {line.begin, place.isInHeader ? lineAt(text_, value.raw.end).end : value.next};
    place.value = value.raw;
    place.comments = std::move(value.comments);
    place.option.value = place.isBare ? dialect_.bareValue : std::move(value.text);
    place.option.comment = std::move(value.comment);
    layout_.options.push_back(std::move(place));
  }

  // ---- Faults

  void reportRepeats() {
    std::unordered_set<std::string> known;
    for (const SectionPlace& section : layout_.sections)
      if (!known.insert(section.key).second) report(section.header.begin, kRepeats);
    known.clear();
    for (const OptionPlace& place : layout_.options)
      if (!known.insert(layout_.sections[place.section].key + '\n' + place.option.key).second)
        report(place.name.begin, kRepeats);
  }

  void countLines() {
    std::ranges::stable_sort(faults_, {}, &std::pair<std::size_t, TextId>::first);
    std::size_t line = 1, counted = 0;
    for (const auto& [at, fault] : faults_) {
      line += static_cast<std::size_t>(std::ranges::count(text_.substr(counted, at - counted), '\n'));
      counted = at;
      layout_.faults.push_back({line, fault});
    }
  }

  const Dialect& dialect_;
  std::string_view text_;
  ValueReader values_;
  std::size_t start_ = 0;
  Layout layout_;
  std::vector<std::pair<std::size_t, TextId>> faults_;  ///< with positions
};

}  // namespace

Layout layoutOf(const Dialect& dialect, std::string_view text) {
  return LayoutReader(dialect, text).read();
}

Records recordsOf(const Dialect& dialect, const Layout& layout) {
  Records records{&dialect, {}};
  std::unordered_map<std::string, std::size_t> indexes;
  std::vector<std::size_t> merged;
  for (const SectionPlace& place : layout.sections) {
    const auto [found, isNew] = indexes.try_emplace(place.key, records.sections.size());
    if (isNew) records.sections.push_back({place.name, {}, place.key, true});
    merged.push_back(found->second);
  }
  for (const OptionPlace& place : layout.options)
    records.sections[merged[place.section]].options.push_back(place.option);
  records.complete();
  return records;
}

}  // namespace vel::velini
