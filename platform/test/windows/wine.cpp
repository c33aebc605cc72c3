#include "platform/test/windows/wine.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <filesystem>

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

}  // namespace vel::test
