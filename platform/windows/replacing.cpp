// Replaces a file atomically by another one written beside it. The new file is marked for deletion from the
// moment it exists until it is complete, so the system removes it even if the process is killed:
//
//   create ~random.tmp, mark it for deletion -> write -> copy the rights -> flush -> remove the mark -> close
//   -> rename over the target
//
// A killed process can leave a temporary file only just after its creation, and between removing the mark and
// the rename.
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "platform/replacing.h"
#include "platform/windows/beside.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

/// Bounds the search for a free name. With 60 random bits even one collision is unlikely.
constexpr int kMaxNames = 100;

HANDLE handleOf(const Replacement& replacement) noexcept {
  return reinterpret_cast<HANDLE>(_get_osfhandle(replacement.descriptor));
}

bool markForDeletion(HANDLE file, bool isMarked) noexcept {
  FILE_DISPOSITION_INFO disposition;
  disposition.DeleteFile = isMarked ? TRUE : FALSE;
  return SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition) != FALSE;
}

/// Creates the file without sharing, so that nobody reads it while it is written.
HANDLE createFile(const wchar_t* name) noexcept {
  return CreateFileW(name, GENERIC_WRITE | DELETE | WRITE_DAC, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

SystemError openBeside(Replacement& replacement) noexcept {
  replacement.isBeside = true;
  for (int attempt = 0; attempt < kMaxNames; ++attempt) {
    if (const SystemError error = makeTemporaryName(replacement); error != 0) return error;
    FileHandle file(createFile(OwnName(replacement.temporary).get()));
    if (!file.isOpen() && GetLastError() == ERROR_FILE_EXISTS) continue;
    if (!file.isOpen()) return errnoOf(GetLastError());
    markForDeletion(file.get(), true);
    replacement.descriptor =
        _open_osfhandle(reinterpret_cast<intptr_t>(file.get()), _O_WRONLY | _O_BINARY | _O_NOINHERIT);
    if (replacement.descriptor < 0) return errno;
    // The descriptor owns the handle now.
    file.release();
    return 0;
  }
  return EEXIST;
}

/// Copies the rights of the old file, if its name still leads to it (else ECANCELED).
SystemError copyOldRights(Replacement& replacement) noexcept {
  if (replacement.old == FileIdentity{}) return 0;
  const FileHandle old(openForQuery(OwnName(replacement.target).get(), READ_CONTROL));
  if (!old.isOpen()) return errnoOf(GetLastError());
  if (identityOf(old.get()) != replacement.old) return ECANCELED;
  replacement.keepsRights = copyRights(old.get(), handleOf(replacement));
  return 0;
}

DWORD attributesOfTarget(const Replacement& replacement) noexcept {
  return GetFileAttributesW(OwnName(replacement.target).get());
}

void removeTemporary(const Replacement& replacement) noexcept {
  DeleteFileW(OwnName(replacement.temporary).get());
}

/// Copies the attributes. Done last, because writing sets some of them.
void copyAttributes(const Replacement& replacement) noexcept {
  const DWORD attributes = attributesOfTarget(replacement);
  if (attributes != INVALID_FILE_ATTRIBUTES)
    SetFileAttributesW(OwnName(replacement.temporary).get(), attributes);
}

/// Renames in one step. ReplaceFile would keep more of the old file's properties, but does so in several
/// steps, and a process killed between them leaves no file under the name.
SystemError moveIntoPlace(const Replacement& replacement) noexcept {
  copyAttributes(replacement);
  const bool isNew = replacement.old == FileIdentity{};
  const DWORD flags = MOVEFILE_WRITE_THROUGH | (isNew ? DWORD{0} : DWORD{MOVEFILE_REPLACE_EXISTING});
  const OwnName temporary(replacement.temporary), target(replacement.target);
  return MoveFileExW(temporary.get(), target.get(), flags) != FALSE ? 0 : errnoOf(GetLastError());
}

/// Resolves links: sets the target to the full name of the file that it leads to. Returns false, with the
/// target unchanged, if the system cannot tell.
bool resolveLink(Replacement& replacement) noexcept {
  const FileHandle file(openForQuery(OwnName(replacement.target).get(), 0));
  WideBuffer linked;
  if (!file.isOpen() || finalName(file.get(), linked) == 0) return false;
  if (GetFileAttributesW(linked.get()) == INVALID_FILE_ATTRIBUTES) return false;
  char target[sizeof replacement.target];
  if (setOwnName(linked.get(), target) != ERROR_SUCCESS) return false;
  std::memcpy(replacement.target, target, sizeof target);
  return true;
}

/// Continues with the link's target, so that the link stays. A dangling link is an error: its target is not
/// created.
SystemError followLink(Replacement& replacement, DWORD attributes) noexcept {
  if (resolveLink(replacement)) return 0;
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? ENOENT : 0;
}

/// Opens a device for writing, which cannot be replaced.
SystemError openInPlace(Replacement& replacement) noexcept {
  replacement.descriptor = _wopen(OwnName(replacement.target).get(), _O_WRONLY | _O_BINARY | _O_NOINHERIT);
  return replacement.descriptor >= 0 ? 0 : errno;
}

SystemError startBesideExisting(Replacement& replacement, DWORD attributes) noexcept {
  constexpr DWORD kUnwritable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
  if ((attributes & kUnwritable) != 0) return EACCES;
  if (const SystemError error = followLink(replacement, attributes); error != 0) return error;
  // The attributes before were the link's own.
  if ((attributesOfTarget(replacement) & kUnwritable) != 0) return EACCES;
  const FileHandle old(openForQuery(OwnName(replacement.target).get(), 0));
  if (!old.isOpen()) return errnoOf(GetLastError());
  replacement.old = identityOf(old.get());
  return openBeside(replacement);
}

SystemError closeWritten(Replacement& replacement) noexcept {
  return _close(std::exchange(replacement.descriptor, -1)) == 0 ? 0 : errno;
}

SystemError finishBeside(Replacement& replacement) noexcept {
  SystemError error = copyOldRights(replacement);
  if (error == 0 && _commit(replacement.descriptor) != 0) error = errno;
  // Closing a marked file would delete it.
  if (error == 0) markForDeletion(handleOf(replacement), false);
  if (const SystemError failed = closeWritten(replacement); error == 0) error = failed;
  if (error == 0) error = moveIntoPlace(replacement);
  if (error != 0) removeTemporary(replacement);
  return error;
}

}  // namespace

SystemError startReplacement(const char* name, Replacement& replacement) noexcept {
  replacement.descriptor = -1;
  replacement.isBeside = false;
  replacement.keepsRights = true;
  replacement.old = {};
  if (const SystemError error = setTarget(name, replacement); error != 0) return error;
  if (isDevice(OwnName(replacement.target).get())) return openInPlace(replacement);
  const DWORD attributes = attributesOfTarget(replacement);
  return attributes == INVALID_FILE_ATTRIBUTES ? openBeside(replacement)
                                               : startBesideExisting(replacement, attributes);
}

SystemError finishReplacement(Replacement& replacement) noexcept {
  return replacement.isBeside ? finishBeside(replacement) : closeWritten(replacement);
}

void dropReplacement(Replacement& replacement) noexcept {
  static_cast<void>(closeWritten(replacement));
  if (replacement.isBeside) removeTemporary(replacement);
}

void removeUnfinishedOnSignals() noexcept {}

}  // namespace vel::platform
