// Processes by a handle opened for the question.
#include "platform/test/process_state.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/test/child_streams.h"

namespace vel::test {

namespace {

bool endsWithin(unsigned int processId, DWORD milliseconds) {
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, processId);
  if (process == nullptr) return true;
  const bool ended = WaitForSingleObject(process, milliseconds) == WAIT_OBJECT_0;
  CloseHandle(process);
  return ended;
}

}  // namespace

bool isRunning(unsigned int processId) {
  return !endsWithin(processId, 0);
}

bool waitForEnd(unsigned int processId) {
  return endsWithin(processId, kChildTimeLimitSeconds * 1000);
}

}  // namespace vel::test
