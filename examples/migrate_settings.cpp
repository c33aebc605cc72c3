// Brings the settings file of version 1 of a program to the form of version 2. Only the lines concerned
// change: comments, spacing, order and line ends of the rest are preserved byte for byte. The old file is
// kept as a backup, and nothing is written unless every step succeeds.
//
//   example_migrate_settings server.ini
//   example_migrate_settings -check server.ini
#include <vel.h>

#include <optional>
#include <string>
#include <vector>

namespace {

enum ExitCode : int { kDone = 0, kOutdated = 1, kCannotRead = 2, kCannotSave = 3, kRefused = 4 };

/// The messages, as a table; a translated program has them in a catalog instead.
enum Message : unsigned long {
  kMoved = 2,
  kComment,
  kCurrent,
  kOld,
  kNoRead,
  kNoWrite,
  kLocked,
  kBadValue,
  kRights
};
constexpr const char* kMessages[] = {
    "[VEL_MSGTAB_SIGNATURE] 11",
    "[MIGRATE]",
    "[%1] %2 is now [%3] %4",
    "[%1] %2: only the backup has the comment: %3",
    "%1 already has the form of version 2",
    "%1 has the form of version 1",
    "Cannot read %1",
    "Cannot write %1 or its backup",
    "Another program is changing %1",
    "[%1] %2: this value cannot be converted",
    "The owner or the permissions of %1 have changed",
};

/// An option, its name in version 2, and how its value changes.
struct Step {
  const char *oldSection, *oldOption, *newSection, *newOption;
  std::optional<std::string> (*convert)(const std::string& value);
};

std::optional<std::string> same(const std::string& value) {
  return value;
}
std::optional<std::string> toMilliseconds(const std::string& seconds) {
  if (seconds.empty() || seconds.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
  return seconds + "000";
}

constexpr Step kSteps[] = {
    {"Main", "Host", "Server", "Address", same},
    {"Main", "Port", "Server", "Port", same},
    {"Main", "Timeout", "Server", "TimeoutMs", toMilliseconds},
    {"Log", "File", "Log", "Path", same},
};

class Migration {
 public:
  Migration(const VelClConsoleUI& ui, const char* name) : ui_(ui), editor_(name) {}

  int run(bool onlyCheck) {
    // Other programs that lock the file wait until it is saved.
    if (!onlyCheck && editor_.lock(5000) == VelEnIniFileLock::TIMED_OUT) fail(kCannotSave, kLocked);
    if (!editor_.load(true)) fail(kCannotRead, kNoRead);
    std::string value, comment;
    const bool isCurrent = get("Program", "Format", value, comment) && value == "2";
    if (isCurrent || onlyCheck) {
      ui_.info(text(isCurrent ? kCurrent : kOld, editor_.getAsCString()).c_str());
      return isCurrent ? kDone : kOutdated;
    }
    for (const Step& step : kSteps) move(step);
    set("Program", "Format", "2");
    save();
    report();
    return kDone;
  }

 private:
  template <typename... Inserts>
  std::string text(Message message, Inserts... inserts) const {
    return VelClMessage(catalog_, message, inserts...).getAsCString();
  }
  [[noreturn]] void fail(ExitCode code, Message message) const {
    ui_.fatal(code, text(message, editor_.getAsCString()).c_str());
  }
  [[noreturn]] void refuse(const char* section, const char* option) const {
    ui_.fatal(kRefused, text(kBadValue, section, option).c_str());
  }

  /// Copies the texts, because the next change of the file invalidates them.
  bool get(const char* section, const char* option, std::string& value, std::string& comment) const {
    const char *foundValue = nullptr, *foundComment = nullptr;
    const VelClIniFile& file = editor_.getIniFile();
    if (!file.getSection(section) || !file.getOption(option, foundValue, foundComment)) return false;
    value = foundValue;
    comment = foundComment;
    return true;
  }

  /// A change that the file could not represent is refused, and leaves the text as it was.
  void set(const char* section, const char* option, const std::string& value) {
    if (!editor_.setValue(section, option, value.c_str())) refuse(section, option);
  }

  void move(const Step& step) {
    std::string value, comment;
    if (!get(step.oldSection, step.oldOption, value, comment)) return;
    const std::optional<std::string> converted = step.convert(value);
    if (!converted.has_value()) refuse(step.oldSection, step.oldOption);
    set(step.newSection, step.newOption, *converted);
    if (!editor_.deleteOption(step.oldSection, step.oldOption)) refuse(step.oldSection, step.oldOption);
    moved_.push_back(text(kMoved, step.oldSection, step.oldOption, step.newSection, step.newOption));
    if (!comment.empty()) lost_.push_back(text(kComment, step.oldSection, step.oldOption, comment.c_str()));
  }

  /// Tells what was done, once the file is saved.
  void report() const {
    for (const std::string& message : moved_) ui_.info(message.c_str());
    for (const std::string& message : lost_) ui_.warning(message.c_str());
  }

  void save() {
    VelClFile old(editor_.getFilename(), nullptr);
    const VelClBakFilename backup(editor_.getFilename());
    if (!old.copyTo(backup, true) || !editor_.save()) fail(kCannotSave, kNoWrite);
    if (!editor_.hasKeptRights()) ui_.warning(text(kRights, editor_.getAsCString()).c_str());
  }

  const VelClConsoleUI& ui_;
  const VelClMessageCatalog catalog_{kMessages, std::size(kMessages)};
  VelClIniFileEditor editor_;
  std::vector<std::string> moved_, lost_;
};

}  // namespace

int main(int argc, char** argv) {
  VelClConsoleUI ui(argc, argv);
  ui.useConventions({.version = "1.0"});
  ui.init("Settings migration", "brings settings to the form of version 2", "1.0", "Nov 22 2026");
  ui.handleUsageHelp("[-check] <file>",
                     "-check  change nothing; exit code 1 tells that the file has the old form\n"
                     "<file>  the settings");
  VelClArgvFreeCursor file(ui);
  if (!file.setToFirst()) ui.fatalMissingArg("<file>");
  return Migration(ui, file.getAsCString()).run(ui.hasArgSwitch("check"));
}
