// velmsg: shows the contents of a message catalog, compares two, compiles message sources, and names error
// codes.
//
// The usage string defines which switches have values; which of them can be combined is checked here. The
// tool's own texts are separate from the catalog that is shown, see CatalogTool.
#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "platform/descriptors.h"
#include "tools/catalog_tool.h"
#include "tools/ccsids.h"
#include "tools/spooled_input.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/velmsg/catalog_file.h"
#include "tools/velmsg/catalog_report.h"
#include "tools/velmsg/compiler.h"
#include "tools/velmsg/error_names.h"
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
  void showDiagnostics(const MessageSource& source, const Diagnostics& diagnostics) const;
};

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
  if (!runTask(*openSource())) {
    std::cout.flush();
    processExit(kExitNotFound);
  }
}

/// Requires exactly one task, and no switch of another one, which the usage string cannot express.
void Tool::checkTasks() const {
  const auto count = [this](std::initializer_list<const char*> switches) {
    return std::ranges::count_if(switches, [this](const char* name) { return hasArgSwitch(name); });
  };
  if (count({"list", "langs", "id", "diff", "error", "compile"}) != 1) refuse(kExactlyOneTask);
  if (hasArgSwitch("lang") && count({"list", "table"}) == 0) refuse(kLangRequiresList);
  const bool compiles = hasArgSwitch("compile");
  const auto outputs = count({"out", "header", "table"});
  if (compiles && outputs == 0) refuse(kOutputRequired);
  if (!compiles && outputs + count({"codepage", "ansi", "languages"}) != 0) refuse(kCompileRequired);
  readInserts();
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
  if (hasFile) return open(file);
  unsigned long size = 0;
  const char* const* table = velMsgCatGetBuiltInTable(&size);
  return std::make_unique<VelClMessageCatalog>(table, size);
}

Tool::Catalog Tool::open(const char* file) const {
  // A catalog needs its file only while it is opened.
  std::optional<vel::tools::SpooledInput> input;
  const bool isInput = std::strcmp(file, "-") == 0;
  if (isInput) input.emplace("DLL");
  Catalog catalog = openCatalogFile(isInput ? input->name() : file);
  input.reset();
  if (!catalog->isValid())
    end(kCatalogNotLoaded, isInput ? vel::tools::kStandardStream : catalog->getAsCString(), kExitNoCatalog);
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
  reqArgString("id", value);
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
  compilation.languages = valuesOf("languages");
  hasArgString("out", compilation.catalog);
  hasArgString("header", compilation.header);
  hasArgString("table", compilation.table);
  const char* value = nullptr;
  if (hasArgString("codepage", value)) compilation.codepage = requireCcsid(value);
  if (hasArgString("ansi", value)) compilation.ansi = requireCcsid(value);
  if (hasArgString("lang", value))
    compilation.tableLanguage = static_cast<std::uint16_t>(requireNumber(value));
  MessageSource source;
  Diagnostics diagnostics;
  const char* file = nullptr;
  const CompileResult result = compile(compilation, source, diagnostics, file);
  showDiagnostics(source, diagnostics);
  if (result == CompileResult::NotRead) end(kSourceNotRead, file, kExitNoCatalog);
  if (result == CompileResult::NotWritten) end(kOutputNotWritten, file, kExitNotWritten);
  if (result == CompileResult::Faulty) processExit(kExitNotFound);
}

/// Writes a line for each diagnostic in the form that editors and build logs know.
void Tool::showDiagnostics(const MessageSource& source, const Diagnostics& diagnostics) const {
  for (const Diagnostic& diagnostic : diagnostics) {
    std::cerr << positionText(source, diagnostic.position) << ": " << text(diagnostic.text);
    if (!diagnostic.argument.empty()) std::cerr << ": " << diagnostic.argument;
    std::cerr << '\n';
  }
  if (diagnostics.size() == kMaxDiagnostics) std::cerr << text(kMoreFaults) << '\n';
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
