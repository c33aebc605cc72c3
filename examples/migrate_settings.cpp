// Brings the settings file of version 1 of a program to the form of version 2. Only the lines concerned
// change: comments, spacing, order and line ends of the rest are preserved byte for byte. The old file is
// kept as a backup, and nothing is written unless every step succeeds.
//
//   example_migrate_settings server.ini
//   example_migrate_settings -check server.ini
#include <vel.h>

#include <string>
#include <vector>

namespace {

enum ExitCode : int { kDone = 0, kOutdated = 1, kCannotRead = 2, kCannotSave = 3, kRefused = 4 };

/// The messages, as a table; a translated program has them in a catalog instead.
enum Message : unsigned long { kMoved = 2, kKept, kComment, kNew, kOld, kNoRead, kNoWrite, kLocked, kBad };
constexpr const char* kMessages[] = {
    "[VEL_MSGTAB_SIGNATURE] 11",
    "[MIGRATE]",
    "[%1] %2 is now [%3] %4",
    "[%1] %2 was not moved, because [%3] %4 exists already",
    "[%1] %2: only the backup has the comment: %3",
    "%1 already has the form of version 2",
    "%1 has the form of version 1",
    "Cannot read %1",
    "Cannot write %1 or its backup",
    "Another program is changing %1",
    "[%1] %2: this value cannot be converted",
};

/// An option, its name in version 2, and how its value changes, if it does.
struct Step {
  const char *oldSection, *oldOption, *newSection, *newOption;
  bool (*convert)(std::string& value) = nullptr;
};

bool toMilliseconds(std::string& seconds) {
  if (seconds.empty() || seconds.find_first_not_of("0123456789") != std::string::npos) return false;
  seconds += "000";
  return true;
}

constexpr Step kSteps[] = {{"Main", "Host", "Server", "Address"},
                           {"Main", "Port", "Server", "Port"},
                           {"Main", "Timeout", "Server", "TimeoutMs", toMilliseconds},
                           {"Log", "File", "Log", "Path"}};

class Migration {
 public:
  Migration(const VelClConsoleUI& ui, const char* name) : ui_(ui), editor_(name) {}

  int run(bool onlyCheck) {
    // Other programs that lock the file wait until it is saved.
    if (!onlyCheck && editor_.lock(5000) == VelEnIniFileLock::TIMED_OUT) fail(kCannotSave, kLocked, name());
    if (!editor_.load(true)) fail(kCannotRead, kNoRead, name());
    const char *format = "", *comment = nullptr;
    const bool isCurrent = find("Program", "Format", format, comment) && std::string(format) == "2";
    if (isCurrent || onlyCheck) {
      ui_.info(text(isCurrent ? kNew : kOld, name()).c_str());
      return isCurrent ? kDone : kOutdated;
    }
    for (const Step& step : kSteps) move(step);
    if (!editor_.setValue("Program", "Format", "2")) fail(kRefused, kBad, "Program", "Format");
    VelClFile old(editor_.getFilename(), nullptr);
    if (!old.copyTo(VelClBakFilename(editor_.getFilename()), true) || !editor_.save())
      fail(kCannotSave, kNoWrite, name());
    for (const std::string& message : moved_) ui_.info(message.c_str());
    for (const std::string& message : warnings_) ui_.warning(message.c_str());
    return kDone;
  }

 private:
  const char* name() const { return editor_.getAsCString(); }
  template <typename... Inserts>
  std::string text(Message message, Inserts... inserts) const {
    return VelClMessage(catalog_, message, inserts...).getAsCString();
  }
  template <typename... Inserts>
  [[noreturn]] void fail(ExitCode code, Message message, Inserts... inserts) const {
    ui_.fatal(code, text(message, inserts...).c_str());
  }
  /// The texts are valid until the next change of the file.
  bool find(const char* section, const char* option, const char*& value, const char*& comment) const {
    const VelClIniFile& file = editor_.getIniFile();
    return file.getSection(section) && file.getOption(option, value, comment);
  }
  void move(const Step& step) {
    const auto& [section, option, newSection, newOption, convert] = step;
    const char *value = nullptr, *comment = nullptr;
    const bool isKept = find(newSection, newOption, value, comment);
    if (!find(section, option, value, comment)) return;
    if (isKept) return warnings_.push_back(text(kKept, section, option, newSection, newOption));
    std::string moved = value;
    if (convert != nullptr && !convert(moved)) fail(kRefused, kBad, section, option);
    if (*comment != '\0') warnings_.push_back(text(kComment, section, option, comment));
    // A change that the file could not represent is refused, and leaves the text as it was.
    if (!editor_.setValue(newSection, newOption, moved.c_str()) || !editor_.deleteOption(section, option))
      fail(kRefused, kBad, section, option);
    moved_.push_back(text(kMoved, section, option, newSection, newOption));
  }

  const VelClConsoleUI& ui_;
  const VelClMessageCatalog catalog_{kMessages, std::size(kMessages)};
  VelClIniFileEditor editor_;
  std::vector<std::string> moved_, warnings_;
};

}  // namespace

int main(int argc, char** argv) {
  VelClConsoleUI ui(argc, argv);
  ui.useConventions({.version = "1.0"});
  ui.init("Settings migration", "brings settings to the form of version 2", "1.0", "Nov 22 2026");
  ui.handleUsageHelp("[-check] <file>",
                     "-check  change nothing; exit code 1 tells that the file has the old form");
  VelClArgvFreeCursor file(ui);
  if (!file.setToFirst()) ui.fatalMissingArg("<file>");
  return Migration(ui, file.getAsCString()).run(ui.hasArgSwitch("check"));
}
