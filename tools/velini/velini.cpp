// velini: reads, edits and checks INI files.
//
// Every run loads the file into an editor of the library, whatever its task. A task that edits locks the file
// before it loads it and saves it at the end, so that several runs at a time lose no change. Reading and
// editing are the work of a document, of the library's dialect (library_document.cpp) or of another
// (dialect_document.cpp); the forms of output are forms.cpp's.
#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "platform/descriptors.h"
#include "platform/signals.h"
#include "tools/catalog_tool.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/velini/diff.h"
#include "tools/velini/document.h"
#include "tools/velini/edits.h"
#include "tools/velini/forms.h"
#include "tools/velini/texts.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_inifile.h"

namespace {

using namespace vel::velini;
using vel::tools::kStandardStream;

constexpr int kExitNotFound = 1;
constexpr int kExitDifferent = 1;
constexpr int kExitNotRead = 2;
constexpr int kExitNotWritten = 3;
constexpr int kExitRefused = 4;
constexpr int kExitLocked = 5;
constexpr int kExitUnsafeName = 6;
constexpr int kMaxSecondsToWait = 24 * 60 * 60;

/// The console user interface with the tool's own texts.
class Tool : public vel::tools::CatalogTool {
 public:
  /// `checked` are the arguments without repeated switches. Neither vector is copied.
  Tool(const std::vector<const char*>& arguments, const std::vector<const char*>& checked)
      : CatalogTool(static_cast<int>(checked.size()), checked.data(), kTexts, kTextEnd),
        arguments_(arguments) {}

  /// Returns the exit code.
  int run();

 private:
  int fail(int exitCode, TextId id, const char* argument = nullptr) const;
  void readSwitches();
  void readTask();
  std::vector<const char*> files() const;
  void readFormat();
  bool edits() const { return !steps_.empty(); }
  bool createsFile() const;
  /// Returns the exit code, 0 if the file may be edited.
  int lock(VelClIniFileEditor& editor) const;
  bool read(VelClIniFileEditor& editor, const char* name) const;
  /// Returns the exit code, 0 if `document` is what the file contains.
  int load(VelClIniFileEditor& editor, const char* name, std::unique_ptr<Document>& document) const;
  void warnOfCuts(const Document& document, const char* name) const;
  int runTask(const Document& document) const;
  template <typename Write>
  int show(Write write) const;
  int get(const Records& records, const char* option) const;
  int list(const Records& records) const;
  int compare(const Records& records, const char* file) const;
  int check(const Document& document) const;
  int edit(Document& document) const;
  int apply(Document& document, const Step& step) const;
  int reportEdit(EditResult result, const char* name) const;
  int write(VelClIniFileEditor& editor, const Document& document) const;

  const std::vector<const char*>& arguments_;
  const char* file_ = nullptr;
  const char* section_ = nullptr;
  const char* prefix_ = nullptr;
  int secondsToWait_ = 30;
  Form form_ = Form::Plain;
  const Dialect* dialect_ = &kLibraryDialect;
  bool allowContinuation_ = true;
  std::vector<Step> steps_;
};

int Tool::fail(int exitCode, TextId id, const char* argument) const {
  report(id, argument);
  return exitCode;
}

/// The library adds ".INI" to a name without extension. Names such as "config" are usual, too, so ".INI" is
/// added only if that file exists and the one with the given name does not.
bool isNamedAsGiven(const char* file) {
  const VelClFilename name(file);
  return !name.hasExtension() &&
         (VelClFile(name, nullptr).isExistent() || !VelClFile(name, ".INI").isExistent());
}

int Tool::run() {
  begin();
  readSwitches();
  VelClIniFileEditor editor(file_);
  if (isNamedAsGiven(file_)) editor.setFileType("");
  if (const int exitCode = lock(editor); exitCode != 0) return exitCode;
  std::unique_ptr<Document> document;
  if (const int exitCode = load(editor, file_, document); exitCode != 0) return exitCode;
  if (!edits()) return runTask(*document);
  if (const int exitCode = edit(*document); exitCode != 0) return exitCode;
  return write(editor, *document);
}

void Tool::readSwitches() {
  reqArgString("file", file_);
  file_ = vel::tools::fileNamed(file_);
  hasArgString("section", section_);
  allowContinuation_ = !hasArgSwitch("nocontinue");
  const char* dialect = nullptr;
  if (hasArgString("dialect", dialect)) dialect_ = dialectOf(dialect);
  if (dialect_ == nullptr) refuse(kUnknownDialect, dialect);
  if (dialect_ != &kLibraryDialect && !allowContinuation_) refuse(kNoContinueInDialect);
  hasArgNumval("wait", secondsToWait_);
  readTask();
  readFormat();
}

/// The usage string cannot express that either one query or edits must be given, nor which tasks need a
/// section.
void Tool::readTask() {
  if (const auto mistake = readSteps(arguments_, steps_); mistake.has_value())
    refuse(mistake->text, mistake->argument);
  int queries = 0;
  for (const char* query : {"get", "list", "sections", "check", "diff"})
    queries += hasArgSwitch(query) ? 1 : 0;
  if (queries + (edits() ? 1 : 0) != 1) refuse(kExactlyOneTask);
  if (hasArgSwitch("get") && section_ == nullptr) refuse(kSectionRequired);
  refuseRepeatedInput(files());
}

/// Returns the files that the command line names.
std::vector<const char*> Tool::files() const {
  std::vector<const char*> names{file_, nullptr};
  hasArgString("diff", names[1]);
  for (const Step& step : steps_)
    if (const auto* const name = std::get_if<const char*>(&step)) names.push_back(*name);
  return names;
}

void Tool::readFormat() {
  const char* form = nullptr;
  if (hasArgString("format", form) && !parseForm(form, form_)) refuse(kUnknownFormat);
  if (form_ == Form::Shell && hasArgSwitch("diff")) refuse(kNoShellDiff);
  if (!hasArgString("prefix", prefix_)) return;
  if (form_ != Form::Shell) refuse(kPrefixForShell);
  if (!isShellPrefix(prefix_)) refuse(kNoPrefix, prefix_);
}

bool Tool::createsFile() const {
  return std::ranges::any_of(steps_, [](const Step& step) {
    const Edit* const edit = std::get_if<Edit>(&step);
    return edit == nullptr || edit->kind == EditKind::Set || edit->kind == EditKind::Add;
  });
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
    return name == file_ && createsFile() && !editor.isExistent();
  }
  velFileSetBinaryMode(vel::platform::kStandardInput, true);
  std::string bytes;
  char buffer[4096];
  while (std::cin.read(buffer, sizeof buffer), std::cin.gcount() > 0)
    bytes.append(buffer, static_cast<std::size_t>(std::cin.gcount()));
  editor.loadFromBuffer(bytes.data(), bytes.size(), allowContinuation_);
  return !std::cin.bad() && std::ferror(stdin) == 0;
}

int Tool::load(VelClIniFileEditor& editor, const char* name, std::unique_ptr<Document>& document) const {
  if (!read(editor, name)) return fail(kExitNotRead, kNotRead, name);
  const std::string_view text(editor.getText(), editor.getLength());
  if (dialect_ == &kLibraryDialect)
    document = libraryDocument(editor, allowContinuation_);
  else
    document = dialectDocument(*dialect_, std::string(text));
  if (hasArgSwitch("check")) return 0;
  if (isWide(text)) return fail(kExitNotRead, kWideText, name);
  // The dialects do not have NUL, and the forms of output cannot write it.
  if (dialect_ != &kLibraryDialect && text.find('\0') != std::string_view::npos)
    return fail(kExitNotRead, kNulByte, name);
  if (dialect_ == &kLibraryDialect) warnOfCuts(*document, name);
  return 0;
}

/// The library does not read all of such lines, and reports no error. So the user has to learn that a value
/// may be cut.
void Tool::warnOfCuts(const Document& document, const char* name) const {
  for (const Fault& fault : document.faults())
    if (fault.text == kLineTooLong || fault.text == kLineWithNul)
      warning(text(fault.text).c_str(), name, std::to_string(fault.line).c_str());
}

int Tool::runTask(const Document& document) const {
  if (hasArgSwitch("check")) return check(document);
  const Records records = document.records();
  const char* value = nullptr;
  if (hasArgString("diff", value)) return compare(records, value);
  // Otherwise the user would see no option and not why.
  if (records.sections.empty())
    for (const Fault& fault : document.faults())
      if (fault.text == kNoSectionYet) return fail(kExitNotFound, kNoSectionYet, file_);
  if (hasArgString("get", value)) return get(records, value);
  if (hasArgSwitch("list")) return list(records);
  writeSections(std::cout, form_, records);
  return 0;
}

/// Writes all of the output or nothing: a script must not evaluate the part before a refused name.
template <typename Write>
int Tool::show(Write write) const {
  ShellNames names(prefix_);
  std::ostringstream out;
  // Otherwise lack of memory would cut the output silently.
  out.exceptions(std::ios::badbit);
  write(out, names);
  if (!names.refused().empty()) return fail(kExitUnsafeName, kUnsafeName, names.refused().c_str());
  std::cout << out.str();
  return 0;
}

int Tool::get(const Records& records, const char* option) const {
  const Section* const section = records.find(section_);
  const Option* const found = section != nullptr ? records.find(*section, option) : nullptr;
  if (found == nullptr) return fail(kExitNotFound, kNotFound, option);
  return show(
      [&](std::ostream& out, ShellNames& names) { writeValue(out, form_, *dialect_, *found, names); });
}

int Tool::list(const Records& records) const {
  const Section* const only = section_ != nullptr ? records.find(section_) : nullptr;
  if (section_ != nullptr && only == nullptr) return fail(kExitNotFound, kNotFound, section_);
  return show([&](std::ostream& out, ShellNames& names) { writeOptions(out, form_, records, only, names); });
}

int Tool::compare(const Records& records, const char* file) const {
  const char* const name = vel::tools::fileNamed(file);
  VelClIniFileEditor editor(name);
  if (isNamedAsGiven(name)) editor.setFileType("");
  std::unique_ptr<Document> other;
  if (const int exitCode = load(editor, name, other); exitCode != 0) return exitCode;
  const Records others = other->records();
  if (section_ != nullptr && records.find(section_) == nullptr && others.find(section_) == nullptr)
    return fail(kExitNotFound, kNotFound, section_);
  return writeDifferences(std::cout, form_, records, others, section_) ? kExitDifferent : 0;
}

int Tool::check(const Document& document) const {
  const std::vector<Fault> faults = document.faults();
  for (const Fault& fault : faults)
    std::cout << file_ << ':' << fault.line << ": " << text(fault.text) << '\n';
  return faults.empty() ? 0 : kExitNotFound;
}

/// Makes all steps, or ends at the first that is refused: then nothing is written.
int Tool::edit(Document& document) const {
  for (const Step& step : steps_)
    if (const int exitCode = apply(document, step); exitCode != 0) return exitCode;
  return 0;
}

/// Returns the name that an edit failed for.
const std::string& concernedName(const Document& document, const Edit& edit, EditResult result) {
  const bool renames = edit.kind == EditKind::Rename || edit.kind == EditKind::RenameSection;
  if (renames && result != EditResult::NotFound) return edit.value;
  const bool isSectionMissing =
      result == EditResult::NotFound && document.records().find(edit.section) == nullptr;
  return isSectionMissing || edit.option.empty() ? edit.section : edit.option;
}

int Tool::apply(Document& document, const Step& step) const {
  if (const Edit* const edit = std::get_if<Edit>(&step); edit != nullptr) {
    const EditResult result = document.apply(*edit);
    return reportEdit(result, concernedName(document, *edit, result).c_str());
  }
  const char* const name = vel::tools::fileNamed(std::get<const char*>(step));
  VelClIniFileEditor editor(name);
  if (isNamedAsGiven(name)) editor.setFileType("");
  std::unique_ptr<Document> other;
  if (const int exitCode = load(editor, name, other); exitCode != 0) return exitCode;
  std::string refused = name;
  return reportEdit(document.merge(*other, refused), refused.c_str());
}

int Tool::reportEdit(EditResult result, const char* name) const {
  switch (result) {
    case EditResult::Done:
      return 0;
    case EditResult::NotFound:
      return fail(kExitNotFound, kNotFound, name);
    case EditResult::Exists:
      return fail(kExitRefused, kExists, name);
    case EditResult::Repeated:
      return fail(kExitRefused, kSetRepeated, name);
    default:
      return fail(kExitRefused, kRefused, name);
  }
}

/// Holds back signals that would end the process, so that no unfinished file is left.
bool saveUninterrupted(VelClIniFileEditor& editor) {
  const std::uint32_t held = vel::platform::holdEndingSignals();
  const bool isSaved = editor.save();
  vel::platform::releaseEndingSignals(held);
  return isSaved;
}

int Tool::write(VelClIniFileEditor& editor, const Document& document) const {
  const std::string_view text = document.text();
  if (file_ == kStandardStream) {
    std::cout.write(text.data(), static_cast<std::streamsize>(text.size()));
    return 0;
  }
  // Only the text is exchanged: the lock, with the state of the file, stays.
  if (dialect_ != &kLibraryDialect) editor.loadFromBuffer(text.data(), text.size(), allowContinuation_);
  if (!saveUninterrupted(editor))
    return fail(kExitNotWritten, editor.isReplaced() ? kReplaced : kNotWritten, file_);
  if (!editor.hasKeptRights()) report(kRightsChanged, file_);
  return 0;
}

}  // namespace

const char* const vel::tools::kToolName = "velini";

int vel::tools::toolMain(int argc, char** argv) {
  velFileSetBinaryMode(vel::platform::kStandardOutput, true);
  const vel::tools::ToolTexts texts{kToolName, kTexts[kTitle], kTexts[kUsage], kTexts[kHelp]};
  if (vel::tools::answerStandardSwitches(argc, argv, texts)) return std::cout.good() ? 0 : kExitNotWritten;
  const std::vector<const char*> arguments(argv, argv + argc);
  const std::vector<const char*> checked = withoutRepeats(arguments);
  Tool tool(arguments, checked);
  int exitCode = 0;
  try {
    exitCode = tool.run();
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    tool.exception(exception, tool.text(kTitle).c_str());
    tool.processExit(CONUI_USAGE);
  }
  // A full disk may show only now.
  if (std::cout.flush()) return exitCode;
  tool.report(kNotWritten);
  return kExitNotWritten;
}
