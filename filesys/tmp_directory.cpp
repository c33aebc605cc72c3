// Where scratch files go.
#include <initializer_list>

#include "platform/environment.h"
#include "platform/files.h"
#include "vel_include/vel_filesys.h"

const char* velGetTmpDirectory(void) {
  for (const char* variable : {"TMP", "TEMP"})
    if (const char* value = vel::platform::settingValue(variable)) return value;
  return vel::platform::fallbackTmpDirectory();
}
