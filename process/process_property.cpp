// Identifiers of the current process and thread.
#include "platform/processes.h"
#include "vel_include/vel_process.h"

VelClProcessProperty::VelClProcessProperty() : id_(vel::platform::currentProcessId()) {}

VelClThreadProperty::VelClThreadProperty() : id_(vel::platform::currentThreadId()) {}
