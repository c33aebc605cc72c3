// Merges options into a text in one pass over its sections, in step with the sections of the model: the
// layout tells where the lines of an option are, the model which option that is. Merging therefore costs as
// much as a few changes, not one change per option. Checking the result is ini_document.cpp's work.
#include "inifile/text_merger.h"

#include "inifile/section_layout.h"
#include "inifile/text_rewriter.h"
#include "inifile/value_writer.h"

namespace vel::inifile {

namespace {

using Section = VelClIniFileSection;
using Option = VelClIniFileOption;

/// A value that was written in quotes keeps them, as a matter of style.
bool isQuoted(Span raw) noexcept {
  return raw.length() > 1 && raw.first() == '"' && raw.end[-1] == '"';
}

class TextMerger {
 public:
  TextMerger(Span text, const VelClIniFile& model, const VelClIniFile& source)
      : end_(text.end), model_(model), source_(source), rewriter_(text) {}

  void mergeSection(const Section& section, const SectionLayout& layout) {
    // Only the first section of a name is found by queries, so later ones are left alone.
    const Section* const source =
        isFirst(model_, section) ? source_.getExistingSection(section.getName()) : nullptr;
    if (source == nullptr) return;
    std::span<const ValueLine> lines(layout.lines);
    for (const Option* option = section.getFirstOption(); option != nullptr; option = option->getNext()) {
      const auto own = consumeOptionLines(lines);
      const Option* const wanted =
          isFirst(model_, section, *option) ? source_.getExistingOption(*source, option->getName()) : nullptr;
      if (wanted != nullptr) setValue(own, wanted->getValue());
    }
    addOptions(*source, &section, layout.contentEnd, layout.separator);
  }

  void addMissingSections() {
    for (const Section* section = source_.getFirstSection(); section != nullptr;
         section = section->getNext()) {
      if (!hasOptions(source_, *section) || model_.getExistingSection(section->getName()) != nullptr)
        continue;
      rewriter_.addHeader(section->getName());
      addOptions(*section, nullptr, end_, {nullptr, nullptr});
    }
  }

  String finish() { return rewriter_.finish(); }

 private:
  /// Puts the whole value into the first line and removes the continuation lines. If a continuation line has
  /// a comment, only its value is removed, so that no comment is lost.
  void setValue(std::span<const ValueLine> lines, const char* value) {
    String written;
    writeValue(written, value, isQuoted(lines.front().value));
    rewriter_.replace(lines.front().value, written);
    for (const ValueLine& line : lines.subspan(1))
      rewriter_.remove(line.hasComment ? line.value : line.whole);
  }

  /// Adds at `at` the options that are not in `target`, a section of the model or null. They look like the
  /// last option of the section, for example "name=value" if it has no blanks around "=".
  void addOptions(const Section& source, const Section* target, const char* at, Span separator) {
    for (const Option* option = source.getFirstOption(); option != nullptr; option = option->getNext()) {
      if (!isFirst(source_, source, *option)) continue;
      if (target != nullptr && model_.getExistingOption(*target, option->getName()) != nullptr) continue;
      String line(option->getName());
      if (separator.begin != nullptr)
        line.append(separator.begin, separator.end);
      else
        line += " = ";
      writeValue(line, option->getValue(), false);
      rewriter_.addLine(at, line);
    }
  }

  const char* end_;
  const VelClIniFile& model_;
  const VelClIniFile& source_;
  TextRewriter rewriter_;
};

}  // namespace

String mergedText(Span text, bool allowContinuation, const VelClIniFile& model, const VelClIniFile& source) {
  TextMerger merger(text, model, source);
  SectionScanner scanner(text, allowContinuation);
  for (const Section* section = model.getFirstSection(); section != nullptr && scanner.next();
       section = section->getNext())
    merger.mergeSection(*section, scanner.layout());
  merger.addMissingSections();
  return merger.finish();
}

}  // namespace vel::inifile
