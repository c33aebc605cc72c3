#include "platform/test/windows/wine.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <filesystem>

#include "platform/test/child_process.h"

namespace vel::test {

std::string unixName(const std::string& path) {
  using Function = char*(CDECL*)(LPCWSTR);
  const HMODULE kernel = GetModuleHandleA("kernel32");
  const auto function =
      reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(kernel, "wine_get_unix_file_name")));
  if (function == nullptr) return "";
  char* const name = function(std::filesystem::path(path).wstring().c_str());
  if (name == nullptr) return "";
  std::string result = name;
  HeapFree(GetProcessHeap(), 0, name);
  return result;
}

bool startUnixProgram(const std::string& name, const std::string& arguments) {
  STARTUPINFOA startUp{};
  startUp.cb = sizeof startUp;
  PROCESS_INFORMATION process{};
  const std::string program = "\\\\?\\unix\\bin\\" + name;
  std::string line = name + " " + arguments;
  return CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startUp,
                        &process) != FALSE;
}

bool isThere(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

Link::Link(const std::string& path, const std::string& target) : path_(path) {
  const std::size_t separator = path.rfind('\\');
  const std::string outside = unixName(target);
  if (outside.empty()) {
    const DWORD isDirectory = std::filesystem::is_directory(target) ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
    isMade_ = CreateSymbolicLinkA(path.c_str(), target.c_str(),
                                  isDirectory | SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE) != 0;
    return;
  }
  outside_ = unixName(path.substr(0, separator)) + "/" + path.substr(separator + 1);
  isMade_ =
      startUnixProgram("ln", "-sn " + outside + " " + outside_) && waitUntil([&] { return isThere(path); });
}

Link::~Link() {
  if (isMade_ && !outside_.empty() && startUnixProgram("rm", outside_))
    waitUntil([this] { return !isThere(path_); });
}

}  // namespace vel::test
