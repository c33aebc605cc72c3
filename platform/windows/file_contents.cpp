// Reads, appends to, replaces and copies files by names of any length. What replaces a file is written beside
// it, and renamed when it is complete and, if that matters, stored.
#include "platform/file_contents.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/named_files.h"
#include "platform/windows/beside.h"
#include "platform/windows/file_words.h"
#include "platform/windows/handles.h"
#include "platform/windows/random_numbers.h"
#include "platform/windows/wide_path.h"

namespace vel::platform {

namespace {

/// Sizes of single reads and writes have 32 bits, and pipes refuse very large ones.
constexpr std::size_t kMaxBytes = std::size_t{1} << 24;
constexpr int kMaxTemporaryNames = 100;

HANDLE openToRead(const wchar_t* name) noexcept {
  return CreateFileW(name, GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                     FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
}

NativeError writeAll(HANDLE file, const void* data, std::size_t size, std::uint64_t& written) noexcept {
  const char* bytes = static_cast<const char*>(data);
  while (size > 0) {
    DWORD count = 0;
    const auto step = static_cast<DWORD>(std::min(size, kMaxBytes));
    if (WriteFile(file, bytes, step, &count, nullptr) == FALSE) return GetLastError();
    if (count == 0) return ERROR_WRITE_FAULT;
    bytes += count;
    size -= count;
    written += count;
  }
  return 0;
}

/// The directory of a name with its separator.
std::wstring_view directoryOf(std::wstring_view name) noexcept {
  const std::size_t end = name.find_last_of(L"\\/:");
  return end == std::wstring_view::npos ? std::wstring_view() : name.substr(0, end + 1);
}

/// A file beside the target that takes its place, unless it is given up.
class NewFile {
 public:
  NewFile() noexcept = default;
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    close();
    if (name_.size() == 0) return;
    SetFileAttributesW(name_.get(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(name_.get());
  }

  /// Finds the file that is replaced: follows links, which stay. Read-only files and directories are refused.
  NativeError findTarget(const WidePath& path) noexcept;
  bool isDevice() const noexcept { return isDevice_; }
  bool replaces() const noexcept { return old_ != FileIdentity{}; }
  const FileIdentity& old() const noexcept { return old_; }
  const wchar_t* target() const noexcept { return target_.get(); }

  /// Calls `make` with new names until one is free; it returns the system's error.
  template <typename Make>
  NativeError create(Make make) noexcept;
  NativeError createEmpty() noexcept;
  NativeError write(const void* data, std::size_t size) noexcept {
    std::uint64_t written = 0;
    return writeAll(file_, data, size, written);
  }
  const wchar_t* name() const noexcept { return name_.get(); }

  /// Gives the file the access list and attributes of the old one.
  void copyOldRights() noexcept;
  NativeError store() noexcept;
  NativeError moveIntoPlace() noexcept;

 private:
  void close() noexcept {
    if (file_ != INVALID_HANDLE_VALUE) CloseHandle(std::exchange(file_, INVALID_HANDLE_VALUE));
  }

  GrowingText target_, name_;
  FileIdentity old_;
  DWORD oldAttributes_ = FILE_ATTRIBUTE_NORMAL;
  HANDLE file_ = INVALID_HANDLE_VALUE;
  bool isDevice_ = false;
};

NativeError NewFile::findTarget(const WidePath& path) noexcept {
  target_.append(path.view());
  const FileHandle file(openToQuery(path.get(), 0));
  if (!file.isOpen()) {
    const NativeError error = GetLastError();
    // A link that leads nowhere is not followed to a place where nothing is.
    const bool isLink = GetFileAttributesW(path.get()) != INVALID_FILE_ATTRIBUTES;
    return error == ERROR_FILE_NOT_FOUND && !isLink ? 0 : error;
  }
  isDevice_ = GetFileType(file.get()) != FILE_TYPE_DISK;
  BY_HANDLE_FILE_INFORMATION info;
  if (isDevice_) return 0;
  if (GetFileInformationByHandle(file.get(), &info) == FALSE) return GetLastError();
  constexpr DWORD kRefused = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
  if ((info.dwFileAttributes & kRefused) != 0) return ERROR_ACCESS_DENIED;
  old_ = identityIn(info);
  oldAttributes_ = info.dwFileAttributes;
  const DWORD own = GetFileAttributesW(path.get());
  if (own == INVALID_FILE_ATTRIBUTES || (own & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return 0;
  target_.cutTo(0);
  return target_.appendBy([&](wchar_t* out, DWORD room) {
    return GetFinalPathNameByHandleW(file.get(), out, room, FILE_NAME_NORMALIZED);
  })
             ? 0
             : GetLastError();
}

template <typename Make>
NativeError NewFile::create(Make make) noexcept {
  NativeError error = ERROR_FILE_EXISTS;
  for (int attempt = 0; attempt < kMaxTemporaryNames && error == ERROR_FILE_EXISTS; ++attempt) {
    GrowingText plain;
    plain.append(directoryOf(target_.view()));
    if (!appendRandomEnd(plain)) return GetLastError();
    name_.cutTo(0);
    // The name may be too long for the target's form.
    if (!translate(plain.view(), name_)) return GetLastError();
    error = make(name_.get());
  }
  if (error != 0) name_.cutTo(0);
  return error;
}

NativeError NewFile::createEmpty() noexcept {
  return create([this](const wchar_t* name) -> NativeError {
    file_ =
        CreateFileW(name, GENERIC_WRITE | WRITE_DAC, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    return file_ == INVALID_HANDLE_VALUE ? GetLastError() : 0;
  });
}

void NewFile::copyOldRights() noexcept {
  if (!replaces()) return;
  const FileHandle old(openToQuery(target_.get(), READ_CONTROL));
  const FileHandle own(file_ == INVALID_HANDLE_VALUE ? openToQuery(name_.get(), WRITE_DAC)
                                                     : INVALID_HANDLE_VALUE);
  const HANDLE to = own.isOpen() ? own.get() : file_;
  if (old.isOpen() && to != INVALID_HANDLE_VALUE) copyRights(old.get(), to);
  SetFileAttributesW(name_.get(), oldAttributes_);
}

NativeError NewFile::store() noexcept {
  if (file_ != INVALID_HANDLE_VALUE) return errorUnless(FlushFileBuffers(file_));
  const FileHandle file(
      CreateFileW(name_.get(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  return file.isOpen() ? errorUnless(FlushFileBuffers(file.get())) : GetLastError();
}

NativeError NewFile::moveIntoPlace() noexcept {
  close();
  const DWORD flags = MOVEFILE_WRITE_THROUGH | (replaces() ? DWORD{MOVEFILE_REPLACE_EXISTING} : DWORD{0});
  if (MoveFileExW(name_.get(), target_.get(), flags) == FALSE) return GetLastError();
  name_.cutTo(0);
  return 0;
}

NativeError writeToDevice(const wchar_t* name, const void* data, std::size_t size) noexcept {
  const FileHandle file(CreateFileW(name, GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file.isOpen()) return GetLastError();
  std::uint64_t written = 0;
  return writeAll(file.get(), data, size, written);
}

/// Removes bytes that were appended just now, if they are still the last ones.
void removeAppendedBytes(const wchar_t* name, LARGE_INTEGER before, std::uint64_t written) noexcept {
  const FileHandle file(CreateFileW(name, GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  LARGE_INTEGER now;
  if (!file.isOpen() || GetFileSizeEx(file.get(), &now) == FALSE) return;
  if (now.QuadPart != before.QuadPart + static_cast<LONGLONG>(written)) return;
  if (SetFilePointerEx(file.get(), before, nullptr, FILE_BEGIN) != FALSE) SetEndOfFile(file.get());
}

NativeError appendToFile(const wchar_t* name, const void* data, std::size_t size) noexcept {
  // With this right alone, the system appends.
  const FileHandle file(CreateFileW(name, FILE_APPEND_DATA | SYNCHRONIZE, kShareAll, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.isOpen()) return GetLastError();
  LARGE_INTEGER before{};
  GetFileSizeEx(file.get(), &before);
  std::uint64_t written = 0;
  const NativeError error = writeAll(file.get(), data, size, written);
  if (error != 0 && written != 0) removeAppendedBytes(name, before, written);
  return error;
}

/// The system's copy takes over attributes and the time of modification.
void makeOrdinary(const NewFile& copy) noexcept {
  const DWORD attributes = GetFileAttributesW(copy.name());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
    SetFileAttributesW(copy.name(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  const FileHandle file(openToQuery(copy.name(), FILE_WRITE_ATTRIBUTES));
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  if (file.isOpen()) SetFileTime(file.get(), &now, &now, &now);
}

/// Keeps what the system's copy does not take over.
void keepTimes(const wchar_t* from, const NewFile& copy) noexcept {
  const FileHandle source(openToQuery(from, 0)), target(openToQuery(copy.name(), FILE_WRITE_ATTRIBUTES));
  FILETIME created, accessed, modified;
  if (source.isOpen() && target.isOpen() &&
      GetFileTime(source.get(), &created, &accessed, &modified) != FALSE)
    SetFileTime(target.get(), nullptr, &accessed, &modified);
}

NativeError checkSource(const wchar_t* name, FileIdentity& identity) noexcept {
  const FileHandle file(openToQuery(name, 0));
  if (!file.isOpen()) return GetLastError();
  FullStatus status;
  if (const NativeError error = statusOfHandle(file.get(), status); error != 0) return error;
  identity = status.identity;
  return status.kind == EntryKind::File ? 0 : NativeError{ERROR_ACCESS_DENIED};
}

NativeError copyBeside(const wchar_t* from, NewFile& copy, const CopyOptions& options) noexcept {
  NativeError error = copy.create([from](const wchar_t* name) -> NativeError {
    BOOL isCancelled = FALSE;
    constexpr DWORD kFlags = COPY_FILE_FAIL_IF_EXISTS | COPY_FILE_ALLOW_DECRYPTED_DESTINATION;
    return errorUnless(CopyFileExW(from, name, nullptr, nullptr, &isCancelled, kFlags));
  });
  if (error != 0) return error;
  if (options.waitsForDisk) {
    // A read-only copy cannot be opened for storing; keepTimes and the attributes come after it.
    const DWORD attributes = GetFileAttributesW(copy.name());
    SetFileAttributesW(copy.name(), FILE_ATTRIBUTE_NORMAL);
    error = copy.store();
    SetFileAttributesW(copy.name(), attributes);
    if (error != 0) return error;
  }
  if (options.keepsRights) {
    keepTimes(from, copy);
  } else {
    makeOrdinary(copy);
    copy.copyOldRights();
  }
  return copy.moveIntoPlace();
}

}  // namespace

SourceFile::~SourceFile() {
  if (handle_ != -1) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

NativeError SourceFile::open(const char* name) noexcept {
  const WidePath path(name);
  if (path.error() != 0) return path.error();
  const HANDLE file = openToRead(path.get());
  handle_ = reinterpret_cast<std::intptr_t>(file);
  return file == INVALID_HANDLE_VALUE ? GetLastError() : 0;
}

NativeError SourceFile::read(void* buffer, std::size_t capacity, std::size_t& size) noexcept {
  DWORD count = 0;
  const auto step = static_cast<DWORD>(std::min(capacity, kMaxBytes));
  if (ReadFile(reinterpret_cast<HANDLE>(handle_), buffer, step, &count, nullptr) == FALSE) {
    const DWORD error = GetLastError();
    // The writer of a pipe has closed it.
    if (error != ERROR_BROKEN_PIPE && error != ERROR_HANDLE_EOF) return error;
  }
  size = count;
  return 0;
}

std::uint64_t SourceFile::sizeLeft() const noexcept {
  const auto file = reinterpret_cast<HANDLE>(handle_);
  LARGE_INTEGER size{}, position{};
  const LARGE_INTEGER nowhere{};
  if (GetFileType(file) != FILE_TYPE_DISK || GetFileSizeEx(file, &size) == FALSE ||
      SetFilePointerEx(file, nowhere, &position, FILE_CURRENT) == FALSE)
    return 0;
  return position.QuadPart < size.QuadPart ? static_cast<std::uint64_t>(size.QuadPart - position.QuadPart)
                                           : 0;
}

NativeError appendTo(const char* name, const void* data, std::size_t size) noexcept {
  const WidePath path(name);
  return path.error() != 0 ? path.error() : appendToFile(path.get(), data, size);
}

NativeError replaceContents(const char* name, const void* data, std::size_t size) noexcept {
  const WidePath path(name);
  if (path.error() != 0) return path.error();
  NewFile file;
  NativeError error = file.findTarget(path);
  if (error != 0) return error;
  if (file.isDevice()) return writeToDevice(path.get(), data, size);
  error = file.createEmpty();
  if (error == 0) error = file.write(data, size);
  if (error == 0) error = file.store();
  if (error == 0) file.copyOldRights();
  return error == 0 ? file.moveIntoPlace() : error;
}

NativeError copyContents(const char* from, const char* to, const CopyOptions& options,
                         CopySide& failed) noexcept {
  const WidePath source(from), path(to);
  FileIdentity identity;
  failed = CopySide::Source;
  if (source.error() != 0) return source.error();
  if (const NativeError error = checkSource(source.get(), identity); error != 0) return error;
  failed = CopySide::Target;
  if (path.error() != 0) return path.error();
  if (!options.replaces && GetFileAttributesW(path.get()) != INVALID_FILE_ATTRIBUTES)
    return ERROR_FILE_EXISTS;
  NewFile copy;
  if (const NativeError error = copy.findTarget(path); error != 0) return error;
  if (copy.isDevice() || (copy.replaces() && copy.old() == identity)) return ERROR_INVALID_PARAMETER;
  return copyBeside(source.get(), copy, options);
}

bool isOtherFileSystem(NativeError error) noexcept {
  return error == ERROR_NOT_SAME_DEVICE;
}

}  // namespace vel::platform
