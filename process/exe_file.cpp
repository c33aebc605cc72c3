// Completes the file name of a program or dynamic library along the system's search path. The search itself
// is the platform's; this file decides which names are searched.
#include "base/enabled_rule.h"
#include "platform/dynamic_libraries.h"
#include "platform/environment.h"
#include "platform/launching.h"
#include "vel_include/vel_process.h"

namespace platform = vel::platform;

VelClExeFile::VelClExeFile(const VelClFilename& name)
    : VelClFile(name, getDefaultFileType()), foundInSystemPath_(false) {
  if (getFilename().hasPath()) {
    // A wrong directory is an error of the caller, so it is dropped and PATH searched only on request.
    const bool usesPath = vel::isEnabledValue(platform::settingValue("VEL_NEWPROCESS_USEPATH"));
    if (platform::programExists(getAsCString()) || !usesPath) return;
    VelClFilename withoutPath(getFilename());
    withoutPath.removePath();
    setFilename(withoutPath);
  }
  search(PROGRAM);
}

VelClExeFile::VelClExeFile(const VelClFilename& name, const char* defaultType, VelEnKind kind)
    : VelClFile(name, defaultType), foundInSystemPath_(false) {
  if (!getFilename().hasPath()) search(kind);
}

VelClExeFile::~VelClExeFile() = default;

// The name stays as given unless a file was found; using it then fails for the system's own reason.
void VelClExeFile::search(VelEnKind kind) {
  char found[VEL_MAX_PATH_LENGTH + 1];
  foundInSystemPath_ = kind == PROGRAM ? platform::searchProgram(getAsCString(), found, sizeof found)
                                       : platform::searchLibrary(getAsCString(), found, sizeof found);
  if (foundInSystemPath_) setFilename(VelClFilename(found));
}

const char* VelClExeFile::getDefaultFileType() {
  return "EXE";
}

const char* VelClExeFile::getSystemPathEnvironmentVariable() {
  return "PATH";
}
