// Defines a drive for the duration of a test.
#include "platform/test/own_root.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <fstream>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/windows/wine.h"

namespace vel::test {

namespace {

/// Returns the name outside Wine of the link that defines a drive.
std::string linkOf(const std::string& drive) {
  const std::string folder = unixName("C:\\");
  return folder.substr(0, folder.rfind("c:")) + static_cast<char>(drive[0] | 0x20) + ":";
}

class OwnDrive {
 public:
  explicit OwnDrive(const std::string& directory) : directory_(directory), link_(unixName(directory)) {
    std::ofstream(directory + "\\" + mark_) << "mine";
    for (const char* letter = "YXWVUT"; *letter != '\0' && name_.empty(); ++letter) {
      const std::string drive = {*letter, ':'};
      if (GetDriveTypeA((drive + "\\").c_str()) == DRIVE_NO_ROOT_DIR && define(drive)) name_ = drive;
    }
  }
  OwnDrive(const OwnDrive&) = delete;
  OwnDrive& operator=(const OwnDrive&) = delete;
  ~OwnDrive() {
    if (name_.empty()) return;
    if (link_.empty())
      DefineDosDeviceA(DDD_REMOVE_DEFINITION | DDD_EXACT_MATCH_ON_REMOVE, name_.c_str(), directory_.c_str());
    else if (startUnixProgram("rm", linkOf(name_)))
      waitUntil([this] { return !isOwn(name_); });
  }

  /// Returns "Y:" or the like, or "" if no drive could be defined.
  const std::string& name() const { return name_; }

 private:
  bool isOwn(const std::string& drive) const {
    std::error_code ignored;
    return std::filesystem::exists(drive + "\\" + mark_, ignored);
  }
  bool define(const std::string& drive) const {
    if (link_.empty()) return DefineDosDeviceA(0, drive.c_str(), directory_.c_str()) != FALSE && isOwn(drive);
    // Another process may have defined the drive meanwhile.
    return startUnixProgram("ln", "-sn " + link_ + " " + linkOf(drive)) &&
           waitUntil([&] { return GetDriveTypeA((drive + "\\").c_str()) != DRIVE_NO_ROOT_DIR; }) &&
           isOwn(drive);
  }

  std::string directory_, link_, name_, mark_ = "mark" + std::to_string(GetCurrentProcessId());
};

}  // namespace

std::optional<std::string> inOwnRoot(const std::string& directory, const InOwnRoot& action) {
  const OwnDrive drive(directory);
  if (drive.name().empty()) return std::nullopt;
  const CurrentDirectory in(drive.name() + "\\");
  return action({drive.name(), "", "\\\\?\\" + drive.name(), "\\\\.\\" + drive.name()});
}

}  // namespace vel::test
