#include "platform/test/system_messages.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

namespace vel::test {
namespace {

std::string toUtf8(const wchar_t* text, int length) {
  std::string bytes(static_cast<std::size_t>(length) * 3, '\0');
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, length, bytes.data(), static_cast<int>(bytes.size()),
                                       nullptr, nullptr);
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

class Library : public SystemMessages {
 public:
  explicit Library(HMODULE module) : module_(module) {}
  ~Library() override { FreeLibrary(module_); }

  std::optional<std::string> format(std::uint32_t language, std::uint32_t id) const override {
    return formatted(language, id, FORMAT_MESSAGE_ARGUMENT_ARRAY);
  }
  std::optional<std::string> stored(std::uint32_t language, std::uint32_t id) const override {
    return formatted(language, id, FORMAT_MESSAGE_IGNORE_INSERTS);
  }

 private:
  std::optional<std::string> formatted(std::uint32_t language, std::uint32_t id, DWORD flags) const {
    wchar_t buffer[0x8000];
    // Numbers of inserts have at most two digits.
    DWORD_PTR inserts[100];
    std::fill(std::begin(inserts), std::end(inserts), reinterpret_cast<DWORD_PTR>(L"insert"));
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | flags, module_, id, language, buffer,
                                        0x8000, reinterpret_cast<va_list*>(inserts));
    if (length == 0) return std::nullopt;
    return toUtf8(buffer, static_cast<int>(length));
  }

  HMODULE module_;
};

}  // namespace

std::unique_ptr<SystemMessages> SystemMessages::load(const std::string& library) {
  const HMODULE module = LoadLibraryExA(library.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  return module == nullptr ? nullptr : std::make_unique<Library>(module);
}

bool hasSystemMessages() {
  return true;
}

}  // namespace vel::test
