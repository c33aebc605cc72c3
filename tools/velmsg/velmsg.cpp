// velmsg: shows the contents of a message catalog, compares two, compiles, exports, imports and checks
// message sources, and names error codes.
//
// The usage string defines which switches have values; which of them can be combined is checked here. The
// tool's own texts are separate from the catalog that is shown, see CatalogTool.
#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <vector>

#include "platform/descriptors.h"
#include "platform/files.h"
#include "tools/catalog_tool.h"
#include "tools/ccsids.h"
#include "tools/spooled_input.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/velmsg/catalog_file.h"
#include "tools/velmsg/catalog_report.h"
#include "tools/velmsg/compiler.h"
#include "tools/velmsg/error_names.h"
#include "tools/velmsg/files.h"
#include "tools/velmsg/message_listing.h"
#include "tools/velmsg/source_tasks.h"
#include "tools/velmsg/texts.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_filesys.h"

namespace {

using namespace vel::velmsg;

constexpr int kExitNotFound = 1;
constexpr int kExitNoCatalog = 2;
constexpr int kExitNotWritten = 3;

/// The console user interface with the tool's own texts.
class Tool : public vel::tools::CatalogTool {
 public:
  Tool(int argc, const char* const* argv) : CatalogTool(argc, argv, kTexts, kTextEnd) {}

  void run();

 private:
  using Catalog = std::unique_ptr<VelClMessageCatalog>;

  /// Reports a fatal error, after the output so far, and ends the process.
  [[noreturn]] void end(TextId text, const char* argument, int exitCode) const;
  std::vector<const char*> valuesOf(const char* name) const;
  std::vector<const char*> readInserts() const;
  void checkTasks() const;
  Catalog openSource() const;
  Catalog open(const char* file) const;
  bool runTask(const VelClMessageCatalog& catalog) const;
  std::uint32_t requireNumber(const char* text) const;
  bool showMessage(const VelClMessageCatalog& catalog, unsigned long id) const;
  void showErrorNames(const char* number) const;
  VelClCCSID requireCcsid(const char* text) const;
  void compileSources() const;
  void checkOutputs(const Compilation& compilation) const;
  void showDiagnostics(const MessageSource& source, const Diagnostics& diagnostics) const;
  void writeDiagnostics(std::ostream& out, const MessageSource& source, const Diagnostics& diagnostics) const;

  // Tasks with sources, whose names are free arguments.
  bool hasSources() const;
  std::uint16_t languageNumber(const char* name) const;
  SourceTask sourceTask() const;
  void runSourceTask() const;
  void endUnlessDone(TaskResult result, const TaskReport& report) const;
  void exportMessages(const char* form) const;
  MessageListing listingOfInput() const;
  void importTexts() const;
  void check() const;
  bool compareSources(const char* first) const;
  void refuseInputAsOutput(const std::vector<const char*>& inputs, const char* output) const;
  void writeOutput(const std::string& bytes) const;
};

void writeToStandardOutput(const std::string& bytes) {
  std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void Tool::end(TextId id, const char* argument, int exitCode) const {
  std::cout.flush();
  fatal(exitCode, text(id).c_str(), argument);
}

void Tool::run() {
  begin();
  checkTasks();
  const char* number = nullptr;
  if (hasArgString("error", number)) {
    showErrorNames(number);
    return;
  }
  if (hasArgSwitch("compile")) {
    compileSources();
    return;
  }
  if (hasSources() || hasArgSwitch("export")) {
    runSourceTask();
    return;
  }
  if (!runTask(*openSource())) {
    std::cout.flush();
    processExit(kExitNotFound);
  }
}

/// A switch, and the tasks and outputs that it is for.
struct SwitchRule {
  const char* name;
  std::initializer_list<const char*> tasks;
};

const SwitchRule kRules[] = {
    {"lang", {"list", "table", "export", "import"}},
    {"out", {"compile", "export", "import"}},
    {"codepage", {"compile", "export", "import", "check", "diff"}},
    {"reference", {"export", "import", "check"}},
    {"merge", {"export"}},
    {"fuzzy", {"import"}},
    {"header", {"compile"}},
    {"table", {"compile"}},
    {"ansi", {"compile"}},
    {"languages", {"compile"}},
};

/// Requires exactly one task, and no switch of another one, which the usage string cannot express.
void Tool::checkTasks() const {
  const auto count = [this](std::initializer_list<const char*> switches) {
    return std::ranges::count_if(switches, [this](const char* name) { return hasArgSwitch(name); });
  };
  if (count({"list", "langs", "id", "diff", "error", "compile", "export", "import", "check"}) != 1)
    refuse(kExactlyOneTask);
  for (const SwitchRule& rule : kRules)
    if (hasArgSwitch(rule.name) && count(rule.tasks) == 0)
      refuse(kNotForTask, (std::string("-") + rule.name).c_str());
  if (hasArgSwitch("compile") && count({"out", "header", "table"}) == 0) refuse(kOutputRequired);
  if (count({"import", "check"}) != 0 && count({"cat", "builtin"}) != 0) refuse(kSourcesOnly);
  if (!hasSources()) readInserts();
}

/// Returns the values of a switch that may have several. The usage string has to allow free arguments for
/// them, so a free argument after any other switch is refused here.
std::vector<const char*> Tool::valuesOf(const char* name) const {
  std::vector<const char*> values;
  bool isWanted = false, isList = false;
  VelClArgvCheckCursor argument(*this);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext()) {
    if (argument.isSwitch()) {
      isWanted = argument.matches(name);
      isList = argument.matches("var") || argument.matches("compile") || argument.matches("languages");
    } else if (isWanted) {
      values.push_back(argument.getAsCString());
    } else if (!isList && argument.isFree()) {
      refuse(kUnexpectedArgument, argument.getAsCString());
    }
  }
  return values;
}

/// Returns the texts after -var, padded with nulls to the maximum number of inserts.
std::vector<const char*> Tool::readInserts() const {
  std::vector<const char*> inserts = valuesOf("var");
  if (inserts.size() > VEL_MAX_MESSAGE_VARIABLES)
    refuse(kUnexpectedArgument, inserts[VEL_MAX_MESSAGE_VARIABLES]);
  inserts.resize(VEL_MAX_MESSAGE_VARIABLES);
  return inserts;
}

Tool::Catalog Tool::openSource() const {
  const char* file = nullptr;
  const bool hasFile = hasArgString("cat", file);
  const bool builtIn = hasArgSwitch("builtin");
  if (hasFile && builtIn) refuse(kSourcesConflict);
  if (!hasFile && !builtIn) refuse(kSourceRequired);
  const char* second = nullptr;
  hasArgString("diff", second);
  refuseRepeatedInput({file, second});
  if (hasFile) return open(file);
  unsigned long size = 0;
  const char* const* table = velMsgCatGetBuiltInTable(&size);
  return std::make_unique<VelClMessageCatalog>(table, size);
}

Tool::Catalog Tool::open(const char* file) const {
  // A catalog needs its file only while it is opened.
  std::optional<vel::tools::SpooledInput> input;
  const bool isInput = vel::tools::fileNamed(file) == vel::tools::kStandardStream;
  if (isInput) input.emplace("DLL");
  Catalog catalog = openCatalogFile(isInput ? input->name() : file);
  input.reset();
  if (!catalog->isValid()) end(kCatalogNotLoaded, vel::tools::fileNamed(file), kExitNoCatalog);
  return catalog;
}

/// Returns false if there was nothing to show, or the catalogs differ.
bool Tool::runTask(const VelClMessageCatalog& catalog) const {
  const char* value = nullptr;
  if (hasArgSwitch("list"))
    return hasArgString("lang", value) ? listMessages(std::cout, catalog, requireNumber(value))
                                       : listMessages(std::cout, catalog);
  if (hasArgSwitch("langs")) return listLanguages(std::cout, catalog);
  if (hasArgString("diff", value)) return listDifferences(std::cout, catalog, *open(value));
  hasArgString("id", value);
  return showMessage(catalog, requireNumber(value));
}

/// Parses a number, or ends the process with the same exit code as the library for a wrong number.
std::uint32_t Tool::requireNumber(const char* text) const {
  std::uint32_t number = 0;
  if (!parseNumber(text, number)) end(kNumberExpected, text, CONUI_ARG_VALUE_TYPE_MISMATCH);
  return number;
}

bool Tool::showMessage(const VelClMessageCatalog& catalog, unsigned long id) const {
  const VelClMessage message(catalog, id, readInserts().data());
  // Message 0 counts as absent. For every id that is not found the library has a text, which is the report.
  const bool found = VelClMessageCatalog::isValidMessageId(id) && message.isValid();
  if (found)
    std::cout << message << '\n';
  else
    error(std::cerr, message.getAsCString());
  return found;
}

void Tool::showErrorNames(const char* text) const {
  if (!listErrorNames(std::cout, requireNumber(text))) end(kUnknownNumber, text, kExitNotFound);
}

VelClCCSID Tool::requireCcsid(const char* text) const {
  VelClCCSID ccsid(0);
  if (!vel::tools::parseCcsid(text, ccsid)) end(kUnknownCcsid, text, CONUI_ARG_VALUE_TYPE_MISMATCH);
  return ccsid;
}

void Tool::compileSources() const {
  Compilation compilation;
  compilation.sources = valuesOf("compile");
  refuseRepeatedInput(compilation.sources);
  compilation.languages = valuesOf("languages");
  if (compilation.sources.empty()) refuse(kSourceFileRequired);
  hasArgString("out", compilation.catalog);
  hasArgString("header", compilation.header);
  hasArgString("table", compilation.table);
  checkOutputs(compilation);
  const char* value = nullptr;
  if (hasArgString("codepage", value)) compilation.codepage = requireCcsid(value);
  if (hasArgString("ansi", value)) compilation.ansi = requireCcsid(value);
  if (compilation.ansi && !isAsciiBased(*compilation.ansi))
    end(kAnsiCodepage, value, CONUI_ARG_VALUE_TYPE_MISMATCH);
  if (hasArgString("lang", value)) compilation.tableLanguage = requireNumber(value);
  MessageSource source;
  Diagnostics diagnostics;
  const CompileOutcome outcome = compile(compilation, source, diagnostics);
  showDiagnostics(source, diagnostics);
  for (const char* const name : outcome.changedRights) report(kRightsChanged, name);
  if (outcome.result == CompileResult::NotRead) end(kSourceNotRead, outcome.file, kExitNoCatalog);
  if (outcome.result == CompileResult::NotWritten) end(kOutputNotWritten, outcome.file, kExitNotWritten);
  if (outcome.result == CompileResult::Faulty) processExit(kExitNotFound);
  writeToStandardOutput(outcome.standardOutput);
}

/// Refuses outputs that would replace an input or each other.
void Tool::checkOutputs(const Compilation& compilation) const {
  std::vector<const char*> outputs = {compilation.catalog, compilation.header, compilation.table};
  std::erase(outputs, nullptr);
  for (const char* const output : outputs) {
    refuseInputAsOutput(compilation.sources, output);
    const auto isSame = [output](const char* other) { return std::strcmp(output, other) == 0; };
    if (std::ranges::count_if(outputs, isSame) > 1) refuse(kOutputTwice, output);
  }
  const bool isShown = compilation.catalog != nullptr && std::strcmp(compilation.catalog, "-") == 0 &&
                       vel::platform::isTerminal(vel::platform::kStandardOutput);
  if (isShown) refuse(kCatalogToTerminal);
}

/// Writes a line for each diagnostic in the form that editors and build logs know.
void Tool::writeDiagnostics(std::ostream& out, const MessageSource& source,
                            const Diagnostics& diagnostics) const {
  for (const Diagnostic& diagnostic : diagnostics) {
    out << positionText(source, diagnostic.position) << ": " << text(diagnostic.text);
    if (!diagnostic.argument.empty()) out << ": " << diagnostic.argument;
    out << '\n';
  }
}

void Tool::showDiagnostics(const MessageSource& source, const Diagnostics& diagnostics) const {
  writeDiagnostics(std::cerr, source, diagnostics);
  if (diagnostics.size() == kMaxDiagnostics) std::cerr << text(kMoreFaults) << '\n';
}

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
  std::cout.flush();
  processExit(kExitNotFound);
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
  std::cout.flush();
  processExit(kExitNotFound);
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
  std::cout.flush();
  if (result == TaskResult::Found) processExit(kExitNotFound);
}

void Tool::check() const {
  TaskReport report;
  const TaskResult result = checkSources(sourceTask(), report);
  if (result == TaskResult::NotRead) end(kSourceNotRead, report.notRead, kExitNoCatalog);
  writeDiagnostics(std::cout, report.source, report.diagnostics);
  std::cout.flush();
  if (result == TaskResult::Found) processExit(kExitNotFound);
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

/// Refuses an output, or null for none, that is the same file as an input.
void Tool::refuseInputAsOutput(const std::vector<const char*>& inputs, const char* output) const {
  using vel::platform::FileIdentity, vel::platform::identityOfFile;
  const FileIdentity replaced = output != nullptr ? identityOfFile(output) : FileIdentity{};
  if (replaced == FileIdentity{}) return;
  if (std::ranges::any_of(inputs, [&](const char* input) { return identityOfFile(input) == replaced; }))
    refuse(kOutputIsInput, output);
}

void Tool::writeOutput(const std::string& bytes) const {
  const char* name = nullptr;
  if (!hasArgString("out", name) || std::strcmp(name, "-") == 0) {
    writeToStandardOutput(bytes);
    return;
  }
  std::vector<const char*> changedRights;
  if (writeOutputs({{name, bytes}}, changedRights) != nullptr) end(kOutputNotWritten, name, kExitNotWritten);
  if (!changedRights.empty()) report(kRightsChanged, name);
}

}  // namespace

const char* const vel::tools::kToolName = "velmsg";

int vel::tools::toolMain(int argc, char** argv) {
  velFileSetBinaryMode(vel::platform::kStandardOutput, true);
  const vel::tools::ToolTexts texts{kToolName, kTexts[kTitle], kTexts[kUsage], kTexts[kHelp]};
  if (vel::tools::answerStandardSwitches(argc, argv, texts)) return std::cout.good() ? 0 : kExitNotWritten;
  Tool tool(argc, argv);
  try {
    tool.run();
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    tool.exception(exception, tool.text(kTitle).c_str());
    tool.processExit(CONUI_USAGE);
  }
  // A full disk may show only now.
  std::cout.flush();
  return std::cout.good() ? 0 : kExitNotWritten;
}
