// Ending a process by its identifier.
#include "platform/launching.h"
#include "vel_include/vel_process.h"

namespace platform = vel::platform;

VelClProcess::VelClProcess() = default;

VelClProcess::VelClProcess(unsigned int id) : VelClProcessProperty(id) {}

bool VelClProcess::kill() {
  lastError_ = {PROCESS_COULD_NOT_KILL, VelEnErrorClass::INVALID_DATA};
  // A process that cannot be opened counts as ended. Keep.
  if (platform::endProcess(getProcessId()) == platform::EndResult::Failed) return false;
  lastError_.reset();
  return true;
}
