// Reads the identifiers of the current process and thread when the objects are built; they do not follow a
// later fork.
#include "platform/processes.h"
#include "vel_include/vel_process.h"

VelClProcessProperty::VelClProcessProperty() : id_(vel::platform::currentProcessId()) {}

VelClThreadProperty::VelClThreadProperty() : id_(vel::platform::currentThreadId()) {}
