// The tasks that export, import, check and compare message sources, whose names are free arguments.
#include <algorithm>
#include <cstring>
#include <iostream>
#include <iterator>
#include <optional>
#include <sstream>

#include "tools/velmsg/tool.h"

namespace vel::velmsg {

/// Whether the task reads sources that are free arguments. -export and -diff do so unless a catalog is given.
bool Tool::hasSources() const {
  if (hasArgSwitch("import") || hasArgSwitch("check")) return true;
  if (hasArgSwitch("cat") || hasArgSwitch("builtin")) return false;
  return hasArgSwitch("export") || (hasArgSwitch("diff") && !freeArguments().empty());
}

/// Returns the LANGID after a switch, or 0 without it.
std::uint16_t Tool::languageNumber(const char* name) const {
  constexpr std::uint32_t kMaxLanguage = 0xFFFF;
  const char* value = nullptr;
  if (!hasArgString(name, value)) return 0;
  const std::uint32_t number = requireNumber(value);
  if (number == 0 || number > kMaxLanguage) end(kNumberExpected, value, CONUI_ARG_VALUE_TYPE_MISMATCH);
  return static_cast<std::uint16_t>(number);
}

SourceTask Tool::sourceTask() const {
  SourceTask task;
  if (hasSources()) task.files = freeArguments();
  const char* value = nullptr;
  if (hasArgString("codepage", value)) task.codepage = requireCcsid(value);
  task.language = languageNumber("lang");
  task.reference = languageNumber("reference");
  hasArgString("merge", task.older);
  // An import may change its source in place, and an export with -merge the older file.
  std::vector<const char*> inputs = task.files;
  if (hasArgSwitch("import")) std::erase_if(inputs, [](const char* name) { return !isPoFile(name); });
  const char* output = nullptr;
  hasArgString("out", output);
  refuseInputAsOutput(inputs, output);
  inputs = task.files;
  inputs.push_back(task.older);
  if (hasArgString("diff", value)) inputs.push_back(value);
  refuseRepeatedInput(inputs);
  task.usesFuzzy = hasArgSwitch("fuzzy");
  return task;
}

void Tool::runSourceTask() const {
  if (hasSources() && freeArguments().empty()) refuse(kSourceFileRequired);
  const char* value = nullptr;
  if (hasArgString("export", value)) return exportMessages(value);
  if (hasArgString("import", value)) {
    if (std::strcmp(value, "po") != 0) refuse(kUnknownForm, value);
    return importTexts();
  }
  if (hasArgSwitch("check")) return check();
  hasArgString("diff", value);
  if (compareSources(value)) return;
  exitAfterOutput(kExitNotFound);
}

/// Shows the diagnostics of a task. Ends the process if it has no result.
void Tool::endUnlessDone(TaskResult result, const TaskReport& report) const {
  showDiagnostics(report.source, report.diagnostics);
  if (result == TaskResult::NotRead) end(kSourceNotRead, report.notRead, kExitNoCatalog);
  if (result == TaskResult::Faulty) processExit(kExitNotFound);
}

void Tool::exportMessages(const char* form) const {
  const bool isPo = std::strcmp(form, "po") == 0, isJson = std::strcmp(form, "json") == 0;
  if (!isPo && !isJson && std::strcmp(form, "tsv") != 0) refuse(kUnknownForm, form);
  if (isPo && !hasSources()) refuse(kSourcesOnly);
  if (isPo && !hasArgSwitch("lang")) refuse(kLangRequired);
  if (!isPo && (hasArgSwitch("merge") || hasArgSwitch("reference"))) refuse(kOnlyForPo);
  if (isPo) {
    TaskReport report;
    std::string po;
    endUnlessDone(exportPoFile(sourceTask(), report, po), report);
    return writeOutput(po);
  }
  const MessageListing listing = listingOfInput();
  std::ostringstream out;
  // Otherwise lack of memory would cut the output silently.
  out.exceptions(std::ios::badbit);
  isJson ? writeJson(out, listing) : writeTsv(out, listing);
  writeOutput(out.str());
  if (!listing.empty()) return;
  exitAfterOutput(kExitNotFound);
}

/// Lists the sources or the catalog of the command line.
MessageListing Tool::listingOfInput() const {
  const SourceTask task = sourceTask();
  const auto language = task.language != 0 ? std::optional<std::uint32_t>(task.language) : std::nullopt;
  if (!hasSources()) return listingOf(*openSource(), language);
  TaskReport report;
  endUnlessDone(readSources(task, report), report);
  return listingOf(report.source, language);
}

void Tool::importTexts() const {
  const SourceTask task = sourceTask();
  const auto poFiles = std::ranges::count_if(task.files, isPoFile);
  if (poFiles == 0) refuse(kPoFileRequired);
  // Otherwise the output would be a source without messages.
  if (poFiles == std::ssize(task.files)) refuse(kSourceFileRequired);
  TaskReport report;
  std::string source;
  const TaskResult result = importPoFiles(task, report, source);
  endUnlessDone(result, report);
  writeOutput(source);
  if (result == TaskResult::Found) exitAfterOutput(kExitNotFound);
}

void Tool::check() const {
  TaskReport report;
  const TaskResult result = checkSources(sourceTask(), report);
  if (result == TaskResult::NotRead) end(kSourceNotRead, report.notRead, kExitNoCatalog);
  writeDiagnostics(std::cout, report.source, report.diagnostics);
  if (result == TaskResult::Found) exitAfterOutput(kExitNotFound);
}

/// Returns false if the sources differ.
bool Tool::compareSources(const char* first) const {
  SourceTask task = sourceTask();
  TaskReport second, report;
  endUnlessDone(readSources(task, second), second);
  task.files = {first};
  endUnlessDone(readSources(task, report), report);
  return writeDifferences(std::cout, listingOf(report.source), listingOf(second.source));
}

}  // namespace vel::velmsg
