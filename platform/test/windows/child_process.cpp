// Child processes by CreateProcess.
#include "platform/test/child_process.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/test/child_streams.h"

namespace vel::test {

namespace {

constexpr DWORD kAbortExitCode = 3;
/// Exit codes from here on are the system's own: exceptions that nobody handled.
constexpr DWORD kFirstExceptionCode = 0xC0000000;

/// An argument as the runtime of the child splits it: back-slashes count only before a quote.
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

bool hasName(const std::string& entry, const std::string& name) {
  return entry.size() > name.size() && entry[name.size()] == '=' &&
         _strnicmp(entry.c_str(), name.c_str(), name.size()) == 0;
}

/// This process's environment with the options' changes, as the block that CreateProcess takes.
std::string environmentBlock(const ChildOptions& options) {
  std::vector<std::string> entries;
  char* const own = GetEnvironmentStringsA();
  for (const char* entry = own; *entry != '\0'; entry += entries.back().size() + 1)
    entries.emplace_back(entry);
  FreeEnvironmentStringsA(own);
  for (const auto& [name, value] : options.environment) {
    std::erase_if(entries, [&name = name](const std::string& entry) { return hasName(entry, name); });
    if (!value.empty()) entries.push_back(name + "=" + value);
  }
  std::string block;
  for (const std::string& entry : entries) block += entry + '\0';
  return block + '\0';
}

/// A file as a standard stream of the child.
HANDLE openStream(const std::string& path, DWORD access) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                     &inheritable, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool start(const std::string& program, const std::vector<std::string>& arguments, const ChildOptions& options,
           const ChildStreams& streams, PROCESS_INFORMATION& process) {
  STARTUPINFOA startUp{};
  startUp.cb = sizeof startUp;
  startUp.dwFlags = STARTF_USESTDHANDLES;
  startUp.hStdInput = openStream(streams.input, GENERIC_READ);
  startUp.hStdOutput = openStream(streams.output, FILE_APPEND_DATA | SYNCHRONIZE);
  startUp.hStdError = openStream(streams.errors, FILE_APPEND_DATA | SYNCHRONIZE);
  std::string line = quoted(program);
  for (const std::string& argument : arguments) line += " " + quoted(argument);
  std::string environment = environmentBlock(options);
  // The child inherits the mode: no window asks somebody to confirm a crash.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  // Without a console a child cannot wait for the tester's keys.
  const BOOL started = CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS,
                                      environment.data(), nullptr, &startUp, &process);
  for (HANDLE stream : {startUp.hStdInput, startUp.hStdOutput, startUp.hStdError}) CloseHandle(stream);
  return started != FALSE;
}

void waitFor(HANDLE process, ChildResult& result) {
  if (WaitForSingleObject(process, kChildTimeLimitSeconds * 1000) != WAIT_OBJECT_0) {
    TerminateProcess(process, kFirstExceptionCode);
    WaitForSingleObject(process, kChildTimeLimitSeconds * 1000);
  }
  DWORD code = kFirstExceptionCode;
  GetExitCodeProcess(process, &code);
  result.endedAbnormally = code == kAbortExitCode || code >= kFirstExceptionCode;
  if (code < kFirstExceptionCode) result.exitCode = static_cast<int>(code);
}

}  // namespace

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options) {
  const ChildStreams streams(options.input);
  ChildResult result;
  PROCESS_INFORMATION process{};
  result.started = start(programPath(program, ".exe"), arguments, options, streams, process);
  if (!result.started) return result;
  waitFor(process.hProcess, result);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  streams.collect(options, result);
  return result;
}

std::string ownProgram() {
  std::string path(1024, '\0');
  path.resize(GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

}  // namespace vel::test
