#include "tools/velmsg/source_tasks.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "base/ascii.h"
#include "tools/velmsg/files.h"
#include "tools/velmsg/po_translation.h"
#include "tools/velmsg/source_check.h"
#include "tools/velmsg/source_editor.h"
#include "tools/velmsg/source_encoding.h"
#include "tools/velmsg/source_writer.h"
#include "tools/velmsg/texts.h"

namespace vel::velmsg {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// Returns a source that has changed: the file with other texts or, if that is not possible, the source in
/// the layout of velmsg.
std::string changedSource(std::string_view bytes, const VelClCCSID& codepage, const MessageSource& before,
                          const MessageSource& changed) {
  Diagnostics ignored;
  const std::string text = toUtf8(bytes, codepage, 0, ignored);
  const bool isPlainUtf8 = bytes == text;
  std::optional<std::string> edited;
  // Messages of several files become one file.
  if (before.files.size() == 1) edited = editSource(text, before, changed);
  return (isPlainUtf8 ? "" : std::string(kUtf8Mark)) + edited.value_or(writeMessageSource(changed));
}

/// Reads all files but those that `isOther`. `first` is set to the bytes of the first one.
template <typename IsOther>
TaskResult readFiles(const SourceTask& task, TaskReport& report, std::string& first, IsOther isOther) {
  report.source = emptySource();
  for (const char* const name : task.files) {
    std::string bytes;
    if (isOther(name)) continue;
    if (!readFile(name, bytes)) {
      report.notRead = name;
      return TaskResult::NotRead;
    }
    readMessageSource(name, bytes, task.codepage, report.source, report.diagnostics);
    if (report.source.files.size() == 1) first = std::move(bytes);
  }
  return report.diagnostics.empty() ? TaskResult::Done : TaskResult::Faulty;
}

/// Returns the reference language, or reports that no text is in it.
std::size_t requireReference(const SourceTask& task, TaskReport& report) {
  const std::size_t reference = referenceLanguage(report.source, task.reference);
  if (reference == kNoName && task.reference != 0)
    addDiagnostic(report.diagnostics, {{}, kUnusedLanguage, std::to_string(task.reference)});
  return reference;
}

TaskResult readPoFile(const char* name, TaskReport& report, PoFile& po) {
  std::string bytes;
  if (!readFile(name, bytes)) {
    report.notRead = name;
    return TaskResult::NotRead;
  }
  report.source.files.emplace_back(name);
  return readPo(bytes, report.source.files.size() - 1, po, report.diagnostics) ? TaskResult::Done
                                                                               : TaskResult::Faulty;
}

struct Translation {
  PoFile po;
  std::uint16_t language;
};

/// Returns 0 and a report if the header says nothing of use. Without a header, a mistake has been reported.
std::uint16_t requireLanguage(const PoFile& po, bool isSound, TaskReport& report) {
  const std::size_t before = report.diagnostics.size();
  const std::uint16_t language = languageOfPo(report.source, po, report.diagnostics);
  const PoEntry* const header = po.header();
  if (language != 0 || report.diagnostics.size() != before || (header == nullptr && !isSound))
    return language;
  const SourcePosition file{report.source.files.size() - 1, 0, 0};
  addDiagnostic(report.diagnostics, {header != nullptr ? header->textPosition : file, kPoUnknownLanguage,
                                     po.headerField("Language")});
  return 0;
}

/// Reads a translation and finds out its language; one that is given counts for all files. Files of the same
/// language become one.
TaskResult addTranslation(const char* name, const SourceTask& task, TaskReport& report,
                          std::vector<Translation>& translations) {
  PoFile po;
  const TaskResult result = readPoFile(name, report, po);
  if (result == TaskResult::NotRead) return result;
  const std::uint16_t language =
      task.language != 0 ? task.language : requireLanguage(po, result == TaskResult::Done, report);
  const auto same = std::ranges::find(translations, language, &Translation::language);
  if (same == translations.end())
    translations.push_back({std::move(po), language});
  else
    std::ranges::move(po.entries, std::back_inserter(same->po.entries));
  return TaskResult::Done;
}

void sortByPosition(Diagnostics& diagnostics) {
  const auto place = [](const Diagnostic& diagnostic) {
    const SourcePosition& at = diagnostic.position;
    return std::tuple(at.file, at.line, at.column);
  };
  std::ranges::stable_sort(diagnostics, {}, place);
}

}  // namespace

bool isPoFile(std::string_view name) {
  constexpr std::string_view kExtension = ".po";
  return name.size() > kExtension.size() &&
         equalsIgnoringAsciiCase(std::string(name.substr(name.size() - kExtension.size())).c_str(),
                                 kExtension.data());
}

TaskResult readSources(const SourceTask& task, TaskReport& report) {
  std::string first;
  return readFiles(task, report, first, [](const char*) { return false; });
}

TaskResult exportPoFile(const SourceTask& task, TaskReport& report, std::string& po) {
  if (const TaskResult result = readSources(task, report); result != TaskResult::Done) return result;
  const std::size_t reference = requireReference(task, report);
  PoFile exported = exportPo(report.source, reference, task.language), older;
  if (task.older != nullptr) {
    if (readPoFile(task.older, report, older) == TaskResult::NotRead) return TaskResult::NotRead;
    checkOlderPo(report.source, older, task.language, report.diagnostics);
    mergePo(exported, older);
  }
  if (!report.diagnostics.empty()) return TaskResult::Faulty;
  po = writePo(exported);
  return TaskResult::Done;
}

TaskResult importPoFiles(const SourceTask& task, TaskReport& report, std::string& source) {
  std::string first;
  if (const TaskResult result = readFiles(task, report, first, isPoFile); result != TaskResult::Done)
    return result;
  const MessageSource before = report.source;
  bool isNew = before.files.size() != 1;
  const std::size_t reference = requireReference(task, report);
  std::vector<Translation> translations;
  for (const char* const name : task.files) {
    if (!isPoFile(name)) continue;
    if (addTranslation(name, task, report, translations) == TaskResult::NotRead) return TaskResult::NotRead;
  }
  if (!report.diagnostics.empty()) return TaskResult::Faulty;
  // The texts of the reference language last: the other files were made for those that are there now.
  const auto isOther = [&](const Translation& translation) {
    return reference == kNoName || translation.language != report.source.languages[reference].number;
  };
  std::stable_partition(translations.begin(), translations.end(), isOther);
  for (const auto& [po, language] : translations)
    isNew = importPo(report.source, po, {reference, language, task.usesFuzzy}, report.diagnostics) || isNew;
  source = isNew ? changedSource(first, task.codepage, before, report.source) : first;
  return report.diagnostics.empty() ? TaskResult::Done : TaskResult::Found;
}

TaskResult checkSources(const SourceTask& task, TaskReport& report) {
  const TaskResult result = readSources(task, report);
  if (result == TaskResult::NotRead) return result;
  // After mistakes the source has the messages that are not affected. A reference may be among the others.
  const std::size_t reference = result == TaskResult::Done ? requireReference(task, report)
                                                           : referenceLanguage(report.source, task.reference);
  checkSource(report.source, reference, report.diagnostics);
  if (result == TaskResult::Faulty) sortByPosition(report.diagnostics);
  return report.diagnostics.empty() ? TaskResult::Done : TaskResult::Found;
}

}  // namespace vel::velmsg
