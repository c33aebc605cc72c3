// trcctl: shows the settings of a trace, or the entries of its file.
//
// The tool attaches to a trace in the controller mode of the library, which is for programs that read one.
// Its texts, the names of its switches included, are messages of the library's catalog. Formatting entries is
// the library's work, showing settings trace_status.cpp's.
#include <algorithm>
#include <cstring>
#include <iostream>
#include <string>

#include "base/ascii.h"
#include "platform/byte_files.h"
#include "platform/descriptors.h"
#include "tools/catalog_tool.h"
#include "tools/spooled_input.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/translation.h"
#include "tools/trcctl/texts.h"
#include "tools/trcctl/trace_status.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_process.h"
#include "vel_include/vel_trace.h"

namespace {

using namespace vel::trcctl;

constexpr int kExitNoFile = 1;
constexpr int kExitCorrupted = 2;
constexpr int kExitNotWritten = 3;
constexpr int kExitNoTrace = 4;

/// Attaches the built-in texts if the library's own catalog is not installed.
void attachTexts(VelClMessageCatalog& catalog) {
  unsigned long size = 0;
  const char* const* const table = velMsgCatGetBuiltInTable(&size);
  if (!catalog.isValid()) catalog.useStringTable(table, size);
}

/// The message and the exit code for a failure of the formatter.
struct Fault {
  TextId text;
  int exitCode;
};

Fault faultOf(const VelClException& exception) {
  switch (exception.getId()) {
    case TRACEFORMAT_COULD_NOT_OPEN:
      return {kFileNotReadable, kExitNoFile};
    case TRACEFORMAT_UNEXPECTED_EOF:
      return {kUnexpectedEnd, kExitCorrupted};
    case TRACEFORMAT_FILE_CORRUPTED:
      return {kInvalidData, kExitCorrupted};
    default:
      return {kNotInitialized, kExitNoTrace};
  }
}

/// Whether the file is empty, as that of a new trace, or large enough for the entry that its first bytes
/// describe. A trace file has no other sign. Also true if the file cannot be read or its size is not known;
/// the formatter reports that.
bool holdsFirstEntry(const char* name) {
  constexpr std::size_t kHeadSize = 20;
  std::uint8_t head[kHeadSize] = {};
  std::size_t count = 0;
  vel::platform::ReadableFile file;
  if (file.open(name, vel::platform::PipeWithoutWriter::Refuse) != 0) return true;
  const std::uint64_t size = vel::platform::bytesLeft(file.descriptor());
  if (size == 0 || vel::platform::readBytes(file.descriptor(), head, kHeadSize, count) != 0) return true;
  std::uint64_t needed = kHeadSize + head[2] + head[3];
  for (std::size_t i = 0; i < 4; ++i) needed += std::uint64_t{head[16 + i]} << (8 * i);
  return count == kHeadSize && needed <= size;
}

/// Whether the format shows the data of an entry once. Otherwise the formatter cannot find the next entry,
/// and reports that the file is corrupted.
bool showsDataOnce(const char* format) {
  int count = 0;
  while (*(format += std::strcspn(format, "%\\")) != '\0' && format[1] != '\0') {
    if (format[0] == '%' && format[1] == 'd') ++count;
    format += 2;
  }
  return count == 1;
}

class Tool {
 public:
  Tool(int argc, const char* const* argv) : ui_(argc, argv) {}

  void run();
  void reportOutputFailure() const { ui_.error(std::cerr, vel::tools::translated(kNotWritten)); }
  [[noreturn]] void end(TextId text, const char* argument, int exitCode) const;
  [[noreturn]] void endWithoutTrace(const char* file) const;

 private:
  const char* optional(TextId name, const char* otherwise) const;
  VelClTraceInstance& createTrace() const;
  static void reportInitialization(std::string key);
  const char* spooledInput() const;
  void selectFile(VelClTraceEnvironment& environment) const;
  void applyFilter(VelClTraceSettings& settings) const;
  void display(const VelClTraceEnvironment& environment) const;

  VelClConsoleUI ui_;
  const char* format_ = nullptr;
  const char* indentation_ = nullptr;
};

void Tool::end(TextId text, const char* argument, int exitCode) const {
  std::cout.flush();
  ui_.fatal(exitCode, VelClMessage(ui_.getMessageCatalog(), text).getAsCString(), argument);
}

void Tool::endWithoutTrace(const char* file) const {
  ui_.fatal(kExitCorrupted, vel::tools::translated(kNotATrace), file);
}

/// Returns the value of a switch, or `otherwise` if it is not given.
const char* Tool::optional(TextId name, const char* otherwise) const {
  ui_.hasArgString(name, otherwise);
  return otherwise;
}

void Tool::run() {
  ui_.useConventions(vel::tools::conventionsOfTools());
  ui_.setOutputStream(std::cerr);
  ui_.init(kTitle, 0UL, nullptr, nullptr);
  ui_.handleUsageHelp(kUsage, kHelp);
  VelClTraceInstance& trace = createTrace();
  VelClTraceEnvironment& environment = trace.getEnvironment();
  applyFilter(environment.getSettings());
  ui_.hasArgString(kSwitchFormat, format_);
  ui_.hasArgString(kSwitchIndentation, indentation_);
  selectFile(environment);
  if (ui_.hasArgSwitch(kSwitchDisplay)) {
    display(environment);
    return;
  }
  // The status is the data that the user asked for, so it goes to standard output, in quiet mode as well.
  ui_.getParams().forceOutputStream(std::cout);
  showStatus(ui_, trace);
}

VelClTraceInstance& Tool::createTrace() const {
  const char* key = nullptr;
  ui_.reqArgString(kSwitchKey, key);
  if (*key == '\0') end(kFileNotIdentified, nullptr, kExitNoFile);
  const char* const instance = optional(kSwitchInstance, nullptr);
  if (instance != nullptr && *instance == '\0') end(kInvalidInstance, nullptr, kExitNoTrace);
  const bool verbose = ui_.hasArgSwitch(kSwitchVerbose);
  // Before the trace is created, since the library reads its variables then.
  if (verbose) reportInitialization(key);
  VelClTraceInstance* const trace = VelClTraceInstance::createControllerInstance(key, instance);
  if (trace == nullptr) end(kNotInitialized, key, kExitNoTrace);
  if (verbose) trace->getEnvironment().getSettings().enableVerbose(true);
  return *trace;
}

/// Makes the library report how it initializes the trace. It does so only if a variable of the trace's key is
/// set, so the tool sets it for its own process, with the key as the library spells it in names of variables.
void Tool::reportInitialization(std::string name) {
  constexpr std::size_t kMaxVariableKeyLength = 24;
  name.resize(std::min(name.size(), kMaxVariableKeyLength));
  for (char& c : name)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  VelClEnvironmentVariable((name + "_TRACE_VERBOSE").c_str(), "yes");
}

/// Returns the name of a file that exists as long as the process.
const char* Tool::spooledInput() const {
  static const vel::tools::SpooledInput input("trc");
  if (!input.isComplete()) end(kFileNotReadable, vel::tools::kStandardStream, kExitNoFile);
  return input.name();
}

void Tool::selectFile(VelClTraceEnvironment& environment) const {
  const char* file = optional(kSwitchFile, nullptr);
  if (file != nullptr && std::strcmp(file, "-") == 0) file = spooledInput();
  // A longer name would be cut, and could then be that of another file.
  if (file != nullptr && std::strlen(file) > VEL_MAX_PATH_LENGTH) end(kFileNotReadable, file, kExitNoFile);
  if (file != nullptr) environment.setFilename(file);
  const VelClFilename& name = environment.getFilename();
  if (name.getLength() == 0) end(kFileNotIdentified, nullptr, kExitNoFile);
  if (name.isExistent()) return;
  if (file != nullptr) end(kFileNotFound, file, kExitNoFile);
  // Before the file of a trace exists, its status can be shown, but no entries.
  if (ui_.hasArgSwitch(kSwitchDisplay)) end(kFileNotIdentified, name.getAsCString(), kExitNoFile);
}

void Tool::applyFilter(VelClTraceSettings& settings) const {
  const char* value = nullptr;
  if (ui_.hasArgString(kSwitchDetail, value)) {
    settings.setDetailLevel(value);
    // Any text that names no detail selects OFF.
    if (settings.getDetailLevel() == VelEnTraceDetail::OFF &&
        !vel::equalsIgnoringAsciiCase(std::string(value).substr(0, 3).c_str(), "OFF"))
      ui_.fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, vel::tools::translated(kUnknownDetail), value);
  }
  if (ui_.hasArgString(kSwitchComponents, value)) settings.initComponentIds(value);
  if (ui_.hasArgString(kSwitchProcess, value)) settings.getFilter().setProcessId(value);
  if (ui_.hasArgString(kSwitchThread, value)) settings.getFilter().setThreadId(value);
}

void Tool::display(const VelClTraceEnvironment& environment) const {
  const char* const format = format_ != nullptr ? format_ : environment.getFormatString();
  if (!showsDataOnce(format))
    ui_.fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, vel::tools::translated(kFormatWithoutData), "%d", format);
  VelClTraceFormatter formatter(environment, nullptr);
  VelClMessageCatalog texts;
  attachTexts(texts);
  formatter.attachVelMessageCatalog(texts);
  formatter.setFormatString(format);
  formatter.setDisplayIndentation(indentation_);
  formatter.setShowNestingLevel(ui_.hasArgSwitch(kSwitchNesting));
  formatter.setShowFunctionRecords(!ui_.hasArgSwitch(kSwitchHideFunctions));
  formatter.setShowRepeatedFunctionNames(!ui_.hasArgSwitch(kSwitchHideRepeated));
  formatter.setShowHex(ui_.hasArgSwitch(kSwitchHex));
  formatter.setShowBinary(ui_.hasArgSwitch(kSwitchBinary));
  const char* const file = environment.getFilename().getAsCString();
  if (!holdsFirstEntry(file)) endWithoutTrace(file);
  try {
    formatter.format(std::cout);
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    const Fault fault = faultOf(exception);
    if (fault.exitCode == kExitCorrupted && formatter.getNumOfEntries() == 0) endWithoutTrace(file);
    end(fault.text, file, fault.exitCode);
  }
  // No summary follows output that could not be written; toolMain reports that.
  if (std::cout.flush()) showResult(ui_, environment, formatter);
}

}  // namespace

const char* const vel::tools::kToolName = "trcctl";

int vel::tools::toolMain(int argc, char** argv) {
  velFileSetBinaryMode(vel::platform::kStandardOutput, true);
  // The help needs its texts before there is a console user interface.
  VelClMessageCatalog texts;
  attachTexts(texts);
  texts.useLanguageFallback();
  vel::tools::chooseLanguageOfTool(texts);
  const VelClMessage title(texts, kTitle);
  const VelClMessage usage(texts, kUsage);
  const VelClMessage help(texts, kHelp);
  if (vel::tools::answerStandardSwitches(
          argc, argv, {kToolName, title.getAsCString(), usage.getAsCString(), help.getAsCString()}))
    return std::cout.flush() ? 0 : kExitNotWritten;
  Tool tool(argc, argv);
  try {
    tool.run();
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    tool.end(kNotInitialized, nullptr, kExitNoTrace);
  }
  if (std::cout.flush()) return 0;
  tool.reportOutputFailure();
  return kExitNotWritten;
}
