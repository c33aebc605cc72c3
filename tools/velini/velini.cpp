// velini: reads, edits and checks INI files.
//
// Every run loads the file into an editor, whatever its task: reading tasks use the model in it. A task that
// edits locks the file before it loads it and saves it at the end, so that several runs at a time lose no
// change. Editing is the library's work, the forms of output are forms.cpp's.
#include <algorithm>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "inifile/text_rules.h"
#include "platform/descriptors.h"
#include "platform/signals.h"
#include "tools/catalog_tool.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/velini/forms.h"
#include "tools/velini/text_faults.h"
#include "tools/velini/texts.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_inifile.h"

namespace {

using namespace vel::velini;
using vel::tools::kStandardStream;

constexpr int kExitNotFound = 1;
constexpr int kExitNotRead = 2;
constexpr int kExitNotWritten = 3;
constexpr int kExitRefused = 4;
constexpr int kExitLocked = 5;
constexpr int kExitUnsafeName = 6;
constexpr int kMaxSecondsToWait = 24 * 60 * 60;

/// The console user interface with the tool's own texts.
class Tool : public vel::tools::CatalogTool {
 public:
  Tool(int argc, const char* const* argv) : CatalogTool(argc, argv, kTexts, kTextEnd) {}

  /// Returns the exit code.
  int run();

 private:
  int fail(int exitCode, TextId id, const char* argument = nullptr) const;
  void readSwitches();
  void readFormat();
  bool edits() const;
  bool isNamedAsGiven() const;
  /// Returns the exit code, 0 if the file may be edited.
  int lock(VelClIniFileEditor& editor) const;
  bool read(VelClIniFileEditor& editor, const char* name) const;
  int runTask(VelClIniFileEditor& editor);
  template <typename Write>
  int show(Write write) const;
  int get(const VelClIniFile& file, const char* option) const;
  int list(const VelClIniFile& file) const;
  int edit(VelClIniFileEditor& editor) const;
  int set(VelClIniFileEditor& editor, const char* assignment) const;
  int merge(VelClIniFileEditor& editor, const char* name) const;
  int check(const VelClIniFileEditor& editor) const;
  int write(VelClIniFileEditor& editor) const;

  const char* file_ = nullptr;
  const char* section_ = nullptr;
  const char* prefix_ = nullptr;
  int secondsToWait_ = 30;
  Form form_ = Form::Plain;
  bool allowContinuation_ = true;
};

int Tool::fail(int exitCode, TextId id, const char* argument) const {
  report(id, argument);
  return exitCode;
}

int Tool::run() {
  begin();
  readSwitches();
  VelClIniFileEditor editor(file_);
  if (isNamedAsGiven()) editor.setFileType("");
  if (const int exitCode = lock(editor); exitCode != 0) return exitCode;
  if (!read(editor, file_)) return fail(kExitNotRead, kNotRead, file_);
  const std::string_view text(editor.getText(), editor.getLength());
  if (isWide(text) && !hasArgSwitch("check")) return fail(kExitNotRead, kWideText, file_);
  return runTask(editor);
}

/// The library adds ".INI" to a name without extension. Names such as "config" are usual, too, so ".INI" is
/// added only if that file exists and the one with the given name does not.
bool Tool::isNamedAsGiven() const {
  const VelClFilename name(file_);
  return !name.hasExtension() && (VelClFile(name, nullptr).isExistent() || !VelClFile(name, ".INI").isExistent());
}

void Tool::readSwitches() {
  reqArgString("file", file_);
  hasArgString("section", section_);
  allowContinuation_ = !hasArgSwitch("nocontinue");
  // The usage string cannot express that exactly one task must be given, nor which tasks need a section.
  int tasks = 0;
  for (const char* task : {"get", "set", "delete", "delsection", "list", "sections", "merge", "check"})
    tasks += hasArgSwitch(task) ? 1 : 0;
  if (tasks != 1) refuse(kExactlyOneTask);
  for (const char* task : {"get", "set", "delete", "delsection"})
    if (hasArgSwitch(task) && section_ == nullptr) refuse(kSectionRequired);
  hasArgNumval("wait", secondsToWait_);
  readFormat();
}

void Tool::readFormat() {
  const char* form = nullptr;
  if (hasArgString("format", form) && !parseForm(form, form_)) refuse(kUnknownFormat);
  if (!hasArgString("prefix", prefix_)) return;
  if (form_ != Form::Shell) refuse(kPrefixForShell);
  if (!isShellPrefix(prefix_)) refuse(kNoPrefix, prefix_);
}

bool Tool::edits() const {
  for (const char* task : {"set", "delete", "delsection", "merge"})
    if (hasArgSwitch(task)) return true;
  return false;
}

/// Locks the file if the task edits it. A lock that fails for another reason than time means that the file
/// cannot be read or written, so that is reported: it tells the user more.
int Tool::lock(VelClIniFileEditor& editor) const {
  if (file_ == kStandardStream || !edits()) return 0;
  const auto milliseconds =
      static_cast<unsigned int>(std::clamp(secondsToWait_, 0, kMaxSecondsToWait)) * 1000;
  switch (editor.lock(milliseconds)) {
    case VelEnIniFileLock::TIMED_OUT:
      return fail(kExitLocked, kLocked, file_);
    case VelEnIniFileLock::FAILED:
      return read(editor, file_) ? fail(kExitNotWritten, kNotWritten, file_)
                                 : fail(kExitNotRead, kNotRead, file_);
    default:
      return 0;
  }
}

bool Tool::read(VelClIniFileEditor& editor, const char* name) const {
  // A longer name would be cut, and could then be that of another file.
  if (std::strlen(name) > VEL_MAX_PATH_LENGTH) return false;
  if (name != kStandardStream) {
    if (editor.load(allowContinuation_)) return true;
    // Setting and merging create a missing file.
    return name == file_ && (hasArgSwitch("set") || hasArgSwitch("merge")) && !editor.isExistent();
  }
  velFileSetBinaryMode(vel::platform::kStandardInput, true);
  std::string bytes;
  char buffer[4096];
  while (std::cin.read(buffer, sizeof buffer), std::cin.gcount() > 0)
    bytes.append(buffer, static_cast<std::size_t>(std::cin.gcount()));
  editor.loadFromBuffer(bytes.data(), bytes.size(), allowContinuation_);
  return !std::cin.bad() && std::ferror(stdin) == 0;
}

int Tool::runTask(VelClIniFileEditor& editor) {
  const char* option = nullptr;
  // Otherwise the user sees no option and not why.
  if (!edits() && !hasArgSwitch("check") && editor.getIniFile().getFirstSection() == nullptr)
    for (const Fault& fault : faultsBeforeSection({editor.getText(), editor.getLength()}))
      if (fault.text == kNoSectionYet) return fail(kExitNotFound, kNoSectionYet, file_);
  if (hasArgString("get", option)) return get(editor.getIniFile(), option);
  if (hasArgSwitch("list")) return list(editor.getIniFile());
  if (hasArgSwitch("check")) return check(editor);
  if (!hasArgSwitch("sections")) return edit(editor);
  writeSections(std::cout, form_, editor.getIniFile());
  return 0;
}

/// Writes all of the output or nothing: a script must not evaluate the part before a refused name.
template <typename Write>
int Tool::show(Write write) const {
  ShellNames names(prefix_);
  std::ostringstream out;
  write(out, names);
  if (!names.refused().empty()) return fail(kExitUnsafeName, kUnsafeName, names.refused().c_str());
  std::cout << out.str();
  return 0;
}

int Tool::get(const VelClIniFile& file, const char* option) const {
  const VelClIniFileSection* const section = file.getExistingSection(section_);
  const VelClIniFileOption* const found =
      section != nullptr ? file.getExistingOption(*section, option) : nullptr;
  if (found == nullptr) return fail(kExitNotFound, kNotFound, option);
  return show([&](std::ostream& out, ShellNames& names) { writeValue(out, form_, *found, names); });
}

int Tool::list(const VelClIniFile& file) const {
  const VelClIniFileSection* const only = section_ != nullptr ? file.getExistingSection(section_) : nullptr;
  if (section_ != nullptr && only == nullptr) return fail(kExitNotFound, kNotFound, section_);
  return show([&](std::ostream& out, ShellNames& names) { writeOptions(out, form_, file, only, names); });
}

int Tool::edit(VelClIniFileEditor& editor) const {
  const char* value = nullptr;
  if (hasArgString("set", value)) return set(editor, value);
  if (hasArgString("merge", value)) return merge(editor, value);
  // Looked up before the change, to tell a missing record from a change that was refused.
  const bool isOption = hasArgString("delete", value);
  const VelClIniFileSection* const section = editor.getIniFile().getExistingSection(section_);
  if (section == nullptr) return fail(kExitNotFound, kNotFound, section_);
  if (isOption && editor.getIniFile().getExistingOption(*section, value) == nullptr)
    return fail(kExitNotFound, kNotFound, value);
  const bool isDone = isOption ? editor.deleteOption(section_, value) : editor.deleteSection(section_);
  return isDone ? write(editor) : fail(kExitRefused, kRefused, isOption ? value : section_);
}

int Tool::set(VelClIniFileEditor& editor, const char* assignment) const {
  // The first "=" ends the name, which cannot have one; the value can.
  const char* const equalSign = std::strchr(assignment, '=');
  if (equalSign == nullptr) refuse(kAssignmentExpected);
  const std::string option(assignment, equalSign);
  return editor.setValue(section_, option.c_str(), equalSign + 1) ? write(editor)
                                                                  : fail(kExitRefused, kRefused, assignment);
}

/// Returns the name of the first option that cannot be set by itself, or null. For the report of a refused
/// merge, which does not tell the option; the editor is not saved afterwards.
const char* refusedOption(VelClIniFileEditor& editor, const VelClIniFile& source) {
  for (auto* section = source.getFirstSection(); section != nullptr; section = section->getNext())
    for (auto* option = section->getFirstOption(); option != nullptr; option = option->getNext())
      if (!editor.setValue(section->getName(), option->getName(), option->getValue()))
        return option->getName();
  return nullptr;
}

int Tool::merge(VelClIniFileEditor& editor, const char* name) const {
  VelClIniFileEditor other(name);
  if (!read(other, name)) return fail(kExitNotRead, kNotRead, name);
  if (editor.merge(other.getIniFile())) return write(editor);
  const char* const refused = refusedOption(editor, other.getIniFile());
  return fail(kExitRefused, kRefused, refused != nullptr ? refused : name);
}

TextId textOf(const _VelStError& error) {
  if (error.getErrorId() == INIFILE_INVAL_SECTION) return kNoClosingBracket;
  return error.getErrorId() == INIFILE_INVAL_OPTION ? kNoEqualSign : kNothingContinued;
}

bool collectError(const _VelStError& error, unsigned int line, void* faults) {
  static_cast<std::vector<Fault>*>(faults)->push_back({line, textOf(error)});
  return true;
}

/// Parses the text a second time, with a handler that collects the errors. The library reports no error for a
/// line that is too long: it stops reading there, which shows in the count of lines.
int Tool::check(const VelClIniFileEditor& editor) const {
  const std::string_view text(editor.getText(), editor.getLength());
  std::vector<Fault> faults = faultsBeforeSection(text);
  // Unlike the load of a file, loadFromBuffer does not drop "\r" before a line break.
  std::string lines;
  for (std::size_t i = hasUtf8Mark(text) ? std::strlen(vel::inifile::kUtf8Mark) : 0; i < text.size(); ++i)
    if (!text.substr(i).starts_with("\r\n")) lines += text[i];
  VelClIniFile file(file_);
  file.setErrorHandler(collectError, &faults);
  // The bytes of UTF-16 would make every line a syntax error.
  if (isWide(text)) lines.clear();
  file.loadFromBuffer(lines.data(), lines.size(), '\n', true, allowContinuation_);
  const auto breaks = static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
  const std::size_t lastBreak = lines.rfind('\n');
  const std::size_t lastLength = lines.size() - (lastBreak == std::string::npos ? 0 : lastBreak + 1);
  if (file.getLineCount() <= breaks || lastLength > vel::inifile::kMaxLineLength)
    faults.push_back({file.getLineCount(), kLineTooLong});
  std::ranges::stable_sort(faults, {}, &Fault::line);
  for (const Fault& fault : faults)
    std::cout << file_ << ':' << fault.line << ": " << this->text(fault.text) << '\n';
  return faults.empty() ? 0 : kExitNotFound;
}

/// Holds back signals that would end the process, so that no unfinished file is left.
bool saveUninterrupted(VelClIniFileEditor& editor) {
  const std::uint32_t held = vel::platform::holdEndingSignals();
  const bool isSaved = editor.save();
  vel::platform::releaseEndingSignals(held);
  return isSaved;
}

int Tool::write(VelClIniFileEditor& editor) const {
  if (file_ == kStandardStream)
    std::cout.write(editor.getText(), static_cast<std::streamsize>(editor.getLength()));
  else if (!saveUninterrupted(editor))
    return fail(kExitNotWritten, editor.isReplaced() ? kReplaced : kNotWritten, file_);
  else if (!editor.hasKeptRights())
    report(kRightsChanged, file_);
  return 0;
}

}  // namespace

const char* const vel::tools::kToolName = "velini";

int vel::tools::toolMain(int argc, char** argv) {
  velFileSetBinaryMode(vel::platform::kStandardOutput, true);
  const vel::tools::ToolTexts texts{kToolName, kTexts[kTitle], kTexts[kUsage], kTexts[kHelp]};
  if (vel::tools::answerStandardSwitches(argc, argv, texts)) return std::cout.good() ? 0 : kExitNotWritten;
  const std::vector<const char*> arguments = vel::tools::withStandardStream(argc, argv);
  Tool tool(argc, arguments.data());
  int exitCode = 0;
  try {
    exitCode = tool.run();
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    tool.exception(exception, kTexts[kTitle]);
    tool.processExit(CONUI_USAGE);
  }
  // A full disk may show only now.
  std::cout.flush();
  return std::cout.good() ? exitCode : kExitNotWritten;
}
