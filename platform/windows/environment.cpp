// The process's environment.
//
// The C runtime keeps narrow values, in which it replaced the characters that the ANSI code page lacks by
// similar ones when the process started. A value with such characters, and after useUtf8() every value beyond
// ASCII, is converted from the system's environment instead. The text that a caller gets belongs to this file
// then, and lives until the variable has another value:
//
//   "TMP" -> C runtime's value, if it is ASCII or converts without loss -> else kept copy -> else new copy
#include "platform/environment.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string_view>

#include "platform/windows/native_text.h"

namespace vel::platform {

namespace {

/// The value of a variable that was given to a caller; name and value follow the structure.
struct KeptValue {
  KeptValue* next;
  std::size_t nameSize;  ///< with the terminator

  char* name() noexcept { return reinterpret_cast<char*>(this + 1); }
  char* value() noexcept { return name() + nameSize; }
};

constinit SRWLOCK keptLock = SRWLOCK_INIT;
/// Never freed: callers have the texts.
constinit KeptValue* keptValues = nullptr;

bool isAscii(std::wstring_view text) noexcept {
  return std::ranges::all_of(text, [](wchar_t unit) { return unit < 0x80; });
}

/// Takes the value out of the list.
KeptValue* takeKept(const char* name) noexcept {
  for (KeptValue** link = &keptValues; *link != nullptr; link = &(*link)->next) {
    KeptValue* const found = *link;
    if (std::strcmp(found->name(), name) != 0) continue;
    *link = found->next;
    return found;
  }
  return nullptr;
}

/// Returns null if memory runs out.
KeptValue* makeKept(const char* name, const char* value) noexcept {
  const std::size_t nameSize = std::strlen(name) + 1, valueSize = std::strlen(value) + 1;
  auto* const kept =
      static_cast<KeptValue*>(HeapAlloc(GetProcessHeap(), 0, sizeof(KeptValue) + nameSize + valueSize));
  if (kept == nullptr) return nullptr;
  kept->nameSize = nameSize;
  std::memcpy(kept->name(), name, nameSize);
  std::memcpy(kept->value(), value, valueSize);
  return kept;
}

/// Returns a text that equals the value: the one that was returned before, if the value is the same.
const char* keepValue(const char* name, const char* value) noexcept {
  AcquireSRWLockExclusive(&keptLock);
  KeptValue* kept = takeKept(name);
  if (kept != nullptr && std::strcmp(kept->value(), value) != 0) {
    HeapFree(GetProcessHeap(), 0, kept);
    kept = nullptr;
  }
  if (kept == nullptr) kept = makeKept(name, value);
  if (kept != nullptr) {
    kept->next = keptValues;
    keptValues = kept;
  }
  ReleaseSRWLockExclusive(&keptLock);
  return kept != nullptr ? kept->value() : nullptr;
}

/// Reads a variable of the system's environment. Returns false if it is not set.
bool readVariable(const char* name, WideBuffer& value, std::wstring_view& text) noexcept {
  const WideText wide(name, textCodePage());
  if (!wide.isValid()) return false;
  SetLastError(ERROR_SUCCESS);
  const DWORD length = systemVariable(wide.get(), value);
  text = {value.get(), length};
  return length != 0 || GetLastError() == ERROR_SUCCESS;
}

/// Converts a value, with "?" for what the code page lacks. Returns the C runtime's `narrow` value if that
/// has the same characters, else a kept copy; null if memory runs out.
const char* converted(const char* name, const char* narrow, std::wstring_view value) noexcept {
  // No character of a code page has more than four bytes.
  const std::size_t capacity = 4 * value.size() + 1;
  auto* const text = static_cast<char*>(HeapAlloc(GetProcessHeap(), 0, capacity));
  if (text == nullptr) return nullptr;
  const char* result = narrow;
  const bool isComplete = narrowText(value, textCodePage(), text, capacity) == ERROR_SUCCESS;
  if (!isComplete) text[readableText(value, textCodePage(), Similar::Refuse, text, capacity - 1)] = '\0';
  // The runtime's values are in the ANSI code page, also after useUtf8().
  if (narrow == nullptr || !isComplete || textCodePage() == CP_UTF8) result = keepValue(name, text);
  HeapFree(GetProcessHeap(), 0, text);
  return result;
}

}  // namespace

const char* environmentValue(const char* name) noexcept {
  const bool isUtf8 = textCodePage() == CP_UTF8;
  const char* const narrow = std::getenv(name);
  if (narrow == nullptr && !isUtf8) return nullptr;
  WideBuffer buffer;
  std::wstring_view value;
  if (!readVariable(name, buffer, value)) return isUtf8 ? nullptr : narrow;
  return narrow != nullptr && isAscii(value) ? narrow : converted(name, narrow, value);
}

const char* settingValue(const char* name) noexcept {
  return environmentValue(name);
}

SystemError putEnvironment(char* assignment) noexcept {
  // _wputenv accepts a name without "=" and does nothing. It deletes a variable whose new value exceeds the
  // system's limit of 32,766 characters, so both are refused here.
  constexpr std::size_t kMaxValueLength = 32766;
  const WideText wide(assignment, textCodePage());
  if (!wide.isValid()) return errnoOf(wide.error());
  const wchar_t* const value = std::wcschr(wide.get(), L'=');
  if (value == nullptr || std::wcslen(value + 1) > kMaxValueLength) return EINVAL;
  return _wputenv(wide.get()) == 0 ? 0 : errno;
}

}  // namespace vel::platform
