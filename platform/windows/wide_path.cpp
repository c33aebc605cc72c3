// Converts names to UTF-16, and translates those that the system would not take as they are.
#include "platform/windows/wide_path.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <utility>

namespace vel::platform {

namespace {

/// The longest names that all functions take without prefix: CreateDirectory reserves 12 characters.
constexpr std::size_t kUsualLength = 260 - 12 - 1;
/// The system stores sizes of names in 16 bits.
constexpr std::size_t kLongestName = 32766;

constexpr std::wstring_view kPrefix = L"\\\\?\\";
constexpr std::wstring_view kNetworkPrefix = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevices = L"\\\\.\\";

bool isSlash(wchar_t unit) noexcept {
  return unit == L'\\' || unit == L'/';
}

bool hasColon(std::wstring_view name) noexcept {
  return name.size() >= 2 && name[1] == L':' && !isSlash(name[0]);
}

bool isNetworkName(std::wstring_view name) noexcept {
  return name.size() >= 2 && isSlash(name[0]) && isSlash(name[1]);
}

/// Takes the next component off the text, and the separators before it; "" at the end.
std::wstring_view takeComponent(std::wstring_view& text) noexcept {
  while (!text.empty() && isSlash(text[0])) text.remove_prefix(1);
  const auto end = std::find_if(text.begin(), text.end(), isSlash);
  const auto component = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(component.size());
  return component;
}

bool isDotsName(std::wstring_view component) noexcept {
  return component == L"." || component == L"..";
}

/// Whether the system would use another name without the prefix.
bool hasStrippedEnd(std::wstring_view name) noexcept {
  std::wstring_view rest = hasColon(name) ? name.substr(2) : name;
  for (auto component = takeComponent(rest); !component.empty(); component = takeComponent(rest))
    if (!isDotsName(component) && (component.back() == L' ' || component.back() == L'.')) return true;
  return false;
}

bool isRelativeName(std::wstring_view name) noexcept {
  return !isNetworkName(name) && !(hasColon(name) && name.size() > 2 && isSlash(name[2]));
}

std::size_t lengthOfCurrentDirectory() noexcept {
  return GetCurrentDirectoryW(0, nullptr);
}

bool needsTranslation(std::wstring_view name) noexcept {
  if (hasDevicePrefix(name)) return false;
  const std::size_t base = isRelativeName(name) ? lengthOfCurrentDirectory() : 0;
  return name.size() + base > kUsualLength || hasStrippedEnd(name);
}

/// The system's full form of a name of usual length.
bool appendFullName(const wchar_t* name, GrowingText& full) noexcept {
  return full.appendBy(
      [name](wchar_t* out, DWORD room) { return GetFullPathNameW(name, room, out, nullptr); });
}

/// Whether the last component is the name of a device in every directory, such as "NUL". The system decides.
bool isDeviceName(std::wstring_view name, GrowingText& device) noexcept {
  const auto start = std::find_if(name.rbegin(), name.rend(), isSlash).base();
  const auto last = name.substr(static_cast<std::size_t>(start - name.begin()));
  // The longest is "CONOUT$"; blanks, and a dot with anything after it, may follow.
  if (last.empty() || last.size() > 32) return false;
  GrowingText asked;
  asked.append(L"C:\\");
  asked.append(last);
  return appendFullName(asked.get(), device) && device.view().starts_with(kDevices);
}

/// Appends the directory that the name starts at, with the prefix, and takes its spelling off the name: the
/// root of an absolute name, else a current directory.
bool appendStart(std::wstring_view& name, GrowingText& out) noexcept {
  if (isNetworkName(name)) {
    out.append(kNetworkPrefix);
    out.append(takeComponent(name));
    out.append(L'\\');
    out.append(takeComponent(name));
    out.append(L'\\');
    return true;
  }
  if (!isRelativeName(name)) {
    out.append(kPrefix);
    out.append(name.substr(0, 2));
    out.append(L'\\');
    name.remove_prefix(2);
    return true;
  }
  // "C:." is the current directory of a drive, "\" the root of the current drive or share.
  const wchar_t drive[] = {name[0], L':', L'.', L'\0'};
  const wchar_t* const directory = hasColon(name) ? drive : isSlash(name[0]) ? L"\\" : L".";
  if (hasColon(name)) name.remove_prefix(2);
  GrowingText full;
  return appendFullName(directory, full) && translate(full.view(), out);
}

/// Removes the last component, not more than the root.
void removeLast(GrowingText& path, std::size_t rootSize) noexcept {
  std::size_t size = path.size();
  if (size > rootSize && path.get()[size - 1] == L'\\') --size;
  while (size > rootSize && path.get()[size - 1] != L'\\') --size;
  path.cutTo(size);
}

/// The size of the root of a translated name: "\\?\C:\" or "\\?\UNC\server\share\".
std::size_t sizeOfRoot(std::wstring_view path) noexcept {
  std::wstring_view rest = path;
  const bool isNetwork = path.starts_with(kNetworkPrefix);
  rest.remove_prefix(std::min(rest.size(), isNetwork ? kNetworkPrefix.size() : kPrefix.size()));
  takeComponent(rest);
  if (isNetwork) takeComponent(rest);
  return std::min(path.size(), path.size() - rest.size() + 1);
}

}  // namespace

GrowingText::~GrowingText() {
  if (large_ != nullptr) HeapFree(GetProcessHeap(), 0, large_);
}

bool GrowingText::reserve(std::size_t size) noexcept {
  if (isLost_) return false;
  if (size <= capacity_) return true;
  const std::size_t capacity = std::max(size, capacity_ * 2);
  auto* const block = static_cast<wchar_t*>(HeapAlloc(GetProcessHeap(), 0, (capacity + 1) * sizeof(wchar_t)));
  if (block == nullptr) {
    isLost_ = true;
    cutTo(0);
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
  }
  std::memcpy(block, get(), (size_ + 1) * sizeof(wchar_t));
  if (large_ != nullptr) HeapFree(GetProcessHeap(), 0, large_);
  large_ = block;
  capacity_ = capacity;
  return true;
}

void GrowingText::append(std::wstring_view text) noexcept {
  if (!reserve(size_ + text.size())) return;
  std::memcpy(data() + size_, text.data(), text.size() * sizeof(wchar_t));
  cutTo(size_ + text.size());
}

void GrowingText::cutTo(std::size_t size) noexcept {
  size_ = size;
  data()[size] = L'\0';
}

void GrowingText::swap(GrowingText& other) noexcept {
  std::swap(large_, other.large_);
  std::swap(size_, other.size_);
  std::swap(capacity_, other.capacity_);
  std::swap(isLost_, other.isLost_);
  std::swap(small_, other.small_);
}

bool hasDevicePrefix(std::wstring_view name) noexcept {
  return name.size() >= 4 && isNetworkName(name) && (name[2] == L'?' || name[2] == L'.') && isSlash(name[3]);
}

bool translate(std::wstring_view name, GrowingText& translated) noexcept {
  if (hasDevicePrefix(name)) {
    translated.append(name);
    return !translated.isLost();
  }
  if (isDeviceName(name, translated)) return true;
  translated.cutTo(0);
  if (!appendStart(name, translated)) return false;
  const std::size_t rootSize = sizeOfRoot(translated.view());
  for (auto component = takeComponent(name); !component.empty(); component = takeComponent(name)) {
    if (component == L".") continue;
    if (component == L"..") {
      removeLast(translated, rootSize);
      continue;
    }
    if (!translated.view().ends_with(L'\\')) translated.append(L'\\');
    translated.append(component);
  }
  // Only a root ends in a separator.
  if (translated.size() > rootSize && translated.view().ends_with(L'\\'))
    translated.cutTo(translated.size() - 1);
  return !translated.isLost();
}

bool WidePath::convert(const char* name) noexcept {
  const std::size_t length = std::strlen(name);
  // A unit needs at most three bytes.
  if (length > 3 * kLongestName) {
    SetLastError(ERROR_FILENAME_EXCED_RANGE);
    return false;
  }
  const int bytes = static_cast<int>(length);
  int size = 0;
  return text_.appendBy([&](wchar_t* out, DWORD room) {
    if (size == 0) size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name, bytes, nullptr, 0);
    if (size >= static_cast<int>(room)) return static_cast<std::size_t>(size);
    return static_cast<std::size_t>(
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name, bytes, out, static_cast<int>(room)));
  });
}

WidePath::WidePath(const char* name) noexcept {
  if (!convert(name) || (needsTranslation(text_.view()) && !complete())) error_ = GetLastError();
  if (error_ == ERROR_SUCCESS && text_.size() > kLongestName) error_ = ERROR_FILENAME_EXCED_RANGE;
}

bool WidePath::complete() noexcept {
  GrowingText translated;
  if (!translate(text_.view(), translated)) return false;
  text_.swap(translated);
  return true;
}

}  // namespace vel::platform
