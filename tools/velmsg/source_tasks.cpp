#include "tools/velmsg/source_tasks.h"

#include <algorithm>
#include <string_view>

#include "base/ascii.h"
#include "tools/velmsg/files.h"
#include "tools/velmsg/po_translation.h"
#include "tools/velmsg/source_check.h"
#include "tools/velmsg/source_encoding.h"
#include "tools/velmsg/source_writer.h"
#include "tools/velmsg/texts.h"

namespace vel::velmsg {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool isPo(std::string_view name) {
  constexpr std::string_view kExtension = ".po";
  return name.size() > kExtension.size() &&
         equalsIgnoringAsciiCase(std::string(name.substr(name.size() - kExtension.size())).c_str(),
                                 kExtension.data());
}

/// The form of a file, which the import keeps.
struct FileStyle {
  bool hasMark = false;
  bool hasCrLf = false;
};

FileStyle styleOf(std::string_view bytes, const VelClCCSID& codepage) {
  const std::size_t lineEnd = bytes.find('\n');
  const bool isUtf16 = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
  const bool isUtf8 = codepage == VelClCCSID(VelClCCSID::CCSID_UTF8);
  // In UTF-16 a NUL is between the bytes of a line break, before or after the line feed.
  const bool hasCrLf = lineEnd != std::string_view::npos && lineEnd > 1 &&
                       bytes.substr(lineEnd - 2, 2).find('\r') != std::string_view::npos;
  return {bytes.starts_with(kUtf8Mark) || isUtf16 || !isUtf8, hasCrLf};
}

std::string styled(std::string_view text, const FileStyle& style) {
  std::string result(style.hasMark ? kUtf8Mark : "");
  for (const char c : text) {
    if (c == '\n' && style.hasCrLf) result += '\r';
    result += c;
  }
  return result;
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

/// Reads a translation and finds out its language; one that is given counts for all files.
TaskResult addTranslation(const char* name, const SourceTask& task, TaskReport& report,
                          std::vector<Translation>& translations) {
  PoFile po;
  if (const TaskResult result = readPoFile(name, report, po); result == TaskResult::NotRead) return result;
  const std::uint16_t language = task.language != 0 ? task.language : languageOfPo(report.source, po);
  if (language == 0)
    addDiagnostic(report.diagnostics, {{report.source.files.size() - 1, 0, 0}, kPoUnknownLanguage, {}});
  translations.push_back({std::move(po), language});
  return TaskResult::Done;
}

}  // namespace

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
    mergePo(exported, older);
  }
  if (!report.diagnostics.empty()) return TaskResult::Faulty;
  po = writePo(exported);
  return TaskResult::Done;
}

TaskResult importPoFiles(const SourceTask& task, TaskReport& report, std::string& source) {
  std::string first;
  if (const TaskResult result = readFiles(task, report, first, isPo); result != TaskResult::Done)
    return result;
  bool isNew = report.source.files.size() != 1;
  const std::size_t reference = requireReference(task, report);
  std::vector<Translation> translations;
  for (const char* const name : task.files) {
    if (!isPo(name)) continue;
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
  source = isNew ? styled(writeMessageSource(report.source), styleOf(first, task.codepage)) : first;
  return report.diagnostics.empty() ? TaskResult::Done : TaskResult::Found;
}

TaskResult checkSources(const SourceTask& task, TaskReport& report) {
  if (const TaskResult result = readSources(task, report); result != TaskResult::Done)
    return result == TaskResult::Faulty ? TaskResult::Found : result;
  const std::size_t reference = requireReference(task, report);
  checkSource(report.source, reference, report.diagnostics);
  return report.diagnostics.empty() ? TaskResult::Done : TaskResult::Found;
}

}  // namespace vel::velmsg
