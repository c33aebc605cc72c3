// Starts, finds and ends programs. The command line is passed on whole; the program itself splits it.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/files.h"
#include "platform/launching.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

namespace {

DWORD createProcess(const Launch& launch, DWORD otherwise, PROCESS_INFORMATION& process) noexcept {
  WideText commandLine(launch.commandLine, textCodePage());
  if (!commandLine.isValid()) return commandLine.error();
  STARTUPINFOW startUp{};
  startUp.cb = sizeof startUp;
  // The size of a new console's buffer, in characters.
  startUp.dwFlags = STARTF_USECOUNTCHARS;
  startUp.dwXCountChars = 80;
  startUp.dwYCountChars = 256;
  const DWORD flags = CREATE_DEFAULT_ERROR_MODE | NORMAL_PRIORITY_CLASS |
                      (launch.newConsole ? DWORD{CREATE_NEW_CONSOLE} : otherwise);
  const BOOL created = CreateProcessW(nullptr, commandLine.get(), nullptr, nullptr, FALSE, flags, nullptr,
                                      nullptr, &startUp, &process);
  return created != FALSE ? DWORD{ERROR_SUCCESS} : GetLastError();
}

void closeHandles(const PROCESS_INFORMATION& process) noexcept {
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

}  // namespace

NativeError launchAndWait(const Launch& launch, std::uint32_t& exitCode) noexcept {
  PROCESS_INFORMATION process{};
  DWORD error = createProcess(launch, 0, process);
  if (error != ERROR_SUCCESS) return error;
  DWORD code = 0;
  const bool ended = WaitForSingleObject(process.hProcess, INFINITE) == WAIT_OBJECT_0 &&
                     GetExitCodeProcess(process.hProcess, &code) != FALSE;
  if (!ended) error = GetLastError();
  closeHandles(process);
  exitCode = code;
  return error;
}

NativeError launchDetached(const Launch& launch, std::uint32_t& processId) noexcept {
  PROCESS_INFORMATION process{};
  const DWORD error = createProcess(launch, DETACHED_PROCESS, process);
  if (error != ERROR_SUCCESS) return error;
  closeHandles(process);
  processId = process.dwProcessId;
  return 0;
}

EndResult endProcess(std::uint32_t id) noexcept {
  const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, id);
  if (process == nullptr) return EndResult::CannotOpen;
  const bool ended = TerminateProcess(process, 0) != FALSE;
  CloseHandle(process);
  return ended ? EndResult::Ended : EndResult::Failed;
}

bool programExists(const char* name) noexcept {
  return entryExists(name);
}

bool searchProgram(const char* name, char* out, std::size_t capacity) noexcept {
  const WideName wide(name);
  if (!wide.isValid()) return false;
  WideBuffer found;
  const DWORD length = found.fill([&wide](wchar_t* text, DWORD room) {
    return SearchPathW(nullptr, wide.get(), nullptr, room, text, nullptr);
  });
  return length != 0 && narrowText({found.get(), length}, fileNameCodePage(), out, capacity) == ERROR_SUCCESS;
}

}  // namespace vel::platform
