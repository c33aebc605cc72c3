// Finds the directory for scratch files. The variables are read as settings, which a program with more rights
// than its caller ignores: the caller must not choose where such a program writes.
#include <initializer_list>

#include "platform/environment.h"
#include "platform/files.h"
#include "vel_include/vel_filesys.h"

const char* velGetTmpDirectory(void) {
  for (const char* variable : {"TMP", "TEMP"})
    if (const char* value = vel::platform::settingValue(variable)) return value;
  return vel::platform::fallbackTmpDirectory();
}
