// Ends a process by its identifier. Launching one is new_process.cpp's work.
#include "platform/launching.h"
#include "vel_include/vel_process.h"

namespace platform = vel::platform;

VelClProcess::VelClProcess() = default;

VelClProcess::VelClProcess(unsigned int id) : VelClProcessProperty(id) {}

bool VelClProcess::kill() {
  lastError_ = {PROCESS_COULD_NOT_KILL, VelEnErrorClass::INVALID_DATA};
  // Intentional: returns true for a process that has already ended or that this one may not end.
  if (platform::endProcess(getProcessId()) == platform::EndResult::Failed) return false;
  lastError_.reset();
  return true;
}
