// Runs children by CreateProcess, and queries other processes by their handles.
#include "platform/test/child_system.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <io.h>
#include <shellapi.h>

#include <cstdlib>
#include <cwchar>

namespace vel::test {

namespace {

constexpr DWORD kAbortExitCode = 3;
/// Exit codes from here on are those of unhandled exceptions.
constexpr DWORD kFirstExceptionCode = 0xC0000000;

/// Converts UTF-8. A text that is ill-formed is taken for one in the ANSI code page.
std::wstring wide(const std::string& text) {
  const auto size = static_cast<int>(text.size());
  std::wstring result(text.size(), L'\0');
  int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, result.data(), size);
  if (length == 0) length = MultiByteToWideChar(CP_ACP, 0, text.data(), size, result.data(), size);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

/// Quotes an argument for the run-time library of the child. Only backslashes before a quote are doubled.
std::string quoted(const std::string& argument) {
  std::string result = "\"";
  std::size_t backSlashes = 0;
  for (const char c : argument) {
    if (c == '"') result.append(backSlashes + 1, '\\');
    backSlashes = c == '\\' ? backSlashes + 1 : 0;
    result += c;
  }
  return result.append(backSlashes, '\\') + '"';
}

/// Opens a file as a standard stream of the child.
HANDLE openStream(const std::string& path, DWORD access) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return CreateFileW(wide(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                     &inheritable, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

void runPlan(ChildPlan plan, ChildResult& result) {
  STARTUPINFOW startUp{};
  startUp.cb = sizeof startUp;
  startUp.dwFlags = STARTF_USESTDHANDLES;
  startUp.hStdInput = openStream(plan.streams[0], GENERIC_READ);
  startUp.hStdOutput = openStream(plan.streams[1], FILE_APPEND_DATA | SYNCHRONIZE);
  startUp.hStdError = openStream(plan.streams[2], FILE_APPEND_DATA | SYNCHRONIZE);
  const std::string program = plan.program + (plan.program.ends_with(".exe") ? "" : ".exe");
  std::wstring line = wide(quoted(program)), environment;
  for (const std::string& argument : plan.arguments) line += L' ' + wide(quoted(argument));
  for (const std::string& entry : plan.environment) environment += wide(entry) + L'\0';
  // The child inherits this mode, so that no window waits for somebody to confirm a crash.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  PROCESS_INFORMATION process{};
  // Without a console a child cannot wait for keys.
  // On a busy machine, Wine sometimes fails with this error before the child has run any of its code.
  for (int attempts = 5; !result.started && attempts > 0; --attempts) {
    result.started = CreateProcessW(wide(program).c_str(), line.data(), nullptr, nullptr, TRUE,
                                    DETACHED_PROCESS | CREATE_UNICODE_ENVIRONMENT, environment.data(),
                                    nullptr, &startUp, &process);
    if (GetLastError() != ERROR_INTERNAL_ERROR) break;
  }
  for (HANDLE stream : {startUp.hStdInput, startUp.hStdOutput, startUp.hStdError}) CloseHandle(stream);
  if (!result.started) return;
  if (WaitForSingleObject(process.hProcess, kTimeLimitMs) != WAIT_OBJECT_0)
    TerminateProcess(process.hProcess, kFirstExceptionCode);
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = kFirstExceptionCode;
  GetExitCodeProcess(process.hProcess, &code);
  result.endedAbnormally = code == kAbortExitCode || code >= kFirstExceptionCode;
  if (code < kFirstExceptionCode) result.exitCode = static_cast<int>(code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

std::vector<std::string> splitBySystem(const std::string& arguments) {
  int count = 0;
  wchar_t** const found = CommandLineToArgvW(wide("program " + arguments).c_str(), &count);
  std::vector<std::string> texts;
  for (int i = 1; i < count; ++i) {
    std::string text(3 * std::wcslen(found[i]) + 1, ' ');
    WideCharToMultiByte(CP_UTF8, 0, found[i], -1, text.data(), static_cast<int>(text.size()), nullptr,
                        nullptr);
    texts.emplace_back(text.c_str());
  }
  LocalFree(found);
  return texts;
}

std::string ownProgram() {
  std::string path(1024, '\0');
  path.resize(GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

bool endsWithin(unsigned int processId, int milliseconds) {
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, processId);
  if (process == nullptr) return true;
  const bool ended = WaitForSingleObject(process, static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
  CloseHandle(process);
  return ended;
}

void closeDescriptor(int descriptor) {
  _close(descriptor);
}

void setVariable(const char* name, const char* value) {
  _putenv_s(name, value == nullptr ? "" : value);
}

}  // namespace vel::test
