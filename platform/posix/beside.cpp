#include "platform/posix/beside.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

#include "platform/ending_signals.h"
#include "platform/posix/access_list.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/rename.h"
#include "platform/posix/target.h"
#include "platform/posix/unnamed_file.h"

namespace vel::platform {

namespace {

constexpr mode_t kPermissionBits = 07777;
constexpr int kMaxNames = 100;

/// For removeUnfinished.
std::atomic<const Replacement*> unfinished{nullptr};

/// No program is ended between two steps of the file system, or between one and its note.
class EndingSignalsHeld {
 public:
  EndingSignalsHeld() noexcept : held_(holdEndingSignals()) {}
  EndingSignalsHeld(const EndingSignalsHeld&) = delete;
  EndingSignalsHeld& operator=(const EndingSignalsHeld&) = delete;
  ~EndingSignalsHeld() {
    const int error = errno;
    releaseEndingSignals(held_);
    errno = error;
  }

 private:
  std::uint32_t held_;
};

/// A name of 20 characters that nobody can guess, and so nobody can take before.
SystemError makeTemporaryName(Replacement& replacement) noexcept {
  std::uint64_t number = 0;
  if (getentropy(&number, sizeof number) != 0) return errno;
  snprintf(replacement.temporary, sizeof replacement.temporary, "~%015llx.tmp",
           static_cast<unsigned long long>(number >> 4));
  return 0;
}

/// Tries names until one is free.
template <typename Make>
SystemError makeUnderNewName(Replacement& replacement, Make make) noexcept {
  SystemError error = EEXIST;
  for (int attempt = 0; attempt < kMaxNames && error == EEXIST; ++attempt) {
    error = makeTemporaryName(replacement);
    if (error == 0 && !make()) error = errno;
  }
  if (error != 0) replacement.temporary[0] = '\0';
  return error;
}

int createAt(const Replacement& replacement, const char* name, mode_t mode) noexcept {
  return retrying(
      [&] { return openat(replacement.directory, name, O_WRONLY | O_CLOEXEC | O_CREAT | O_EXCL, mode); });
}

SystemError createNamed(mode_t mode, Replacement& replacement) noexcept {
  const EndingSignalsHeld held;
  const SystemError error = makeUnderNewName(replacement, [&] {
    replacement.descriptor = createAt(replacement, replacement.temporary, mode);
    return replacement.descriptor >= 0;
  });
  if (error == 0) unfinished = &replacement;
  return error;
}

void removeTemporary(Replacement& replacement) noexcept {
  if (replacement.temporary[0] == '\0') return;
  unlinkat(replacement.directory, replacement.temporary, 0);
  replacement.temporary[0] = '\0';
}

SystemError moveToNewName(Replacement& replacement) noexcept {
  if (replacement.temporary[0] == '\0')
    return nameUnnamed(replacement.descriptor, replacement.directory, replacement.target);
  return renameWithoutReplacing(replacement.directory, replacement.temporary, replacement.target);
}

SystemError moveOverTarget(Replacement& replacement) noexcept {
  if (replacement.temporary[0] == '\0') {
    const SystemError error = makeUnderNewName(replacement, [&] {
      return nameUnnamed(replacement.descriptor, replacement.directory, replacement.temporary) == 0;
    });
    if (error != 0) return error;
  }
  if (!isStillTarget(replacement)) return ECANCELED;
  const int directory = replacement.directory;
  return renameat(directory, replacement.temporary, directory, replacement.target) == 0 ? 0 : errno;
}

}  // namespace

SystemError createBeside(mode_t mode, BesideName name, Replacement& replacement) noexcept {
  replacement.isBeside = true;
  replacement.temporary[0] = '\0';
  if (name == BesideName::None) {
    replacement.descriptor = createUnnamed(replacement.directory, mode);
    if (replacement.descriptor >= 0) return 0;
  }
  return createNamed(mode, replacement);
}

// Only root can give files away; otherwise try to keep the group. A permission of an owner, group or list
// that is lost goes to nobody else. Neither is a refusal lost: whoever was in the old group now counts among
// the others, who get no more than the group had; without the list, which may refuse single users, they get
// nothing. What counts is what is there in the end: some file systems set the wanted owner by themselves.
bool copyRights(const Replacement& replacement, mode_t mode) noexcept {
  constexpr mode_t kGroupBits = S_IRWXG | S_ISGID;
  const mode_t othersOfGroup = (mode & S_IRWXG) >> 3;
  struct stat old, now;
  if (fstat(replacement.heldTarget, &old) != 0) return false;
  const int descriptor = replacement.descriptor;
  if (fchown(descriptor, old.st_uid, old.st_gid) != 0)
    static_cast<void>(fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) == 0);
  const bool keepsList = copyAccessList(replacement.heldTarget, descriptor);
  if (fstat(descriptor, &now) != 0) return false;
  mode_t kept = mode;
  if (now.st_uid != old.st_uid) kept &= ~mode_t{S_ISUID};
  if (now.st_gid != old.st_gid) kept &= ~kGroupBits & (~mode_t{S_IRWXO} | othersOfGroup);
  if (!keepsList) kept &= ~(kGroupBits | S_IRWXO);
  static_cast<void>(fchmod(descriptor, kept));
  return keepsList && now.st_uid == old.st_uid && now.st_gid == old.st_gid && fstat(descriptor, &now) == 0 &&
         (now.st_mode & kPermissionBits) == mode;
}

SystemError moveIntoPlace(Replacement& replacement) noexcept {
  const EndingSignalsHeld held;
  const SystemError error =
      replacement.heldTarget >= 0 ? moveOverTarget(replacement) : moveToNewName(replacement);
  if (error != 0) removeTemporary(replacement);
  replacement.temporary[0] = '\0';
  return error;
}

SystemError flushWrites(int descriptor) noexcept {
  const int second = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
  return second < 0 || close(second) == 0 || errno == EINTR ? 0 : errno;
}

SystemError store(int descriptor) noexcept {
  return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS ? 0 : errno;
}

SystemError storeDirectory(const Replacement& replacement) noexcept {
  const Descriptor directory(openat(replacement.directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Names can be changed in directories that cannot be read.
  if (!directory.isOpen()) return errno == EACCES ? 0 : errno;
  return store(directory.get());
}

void closeReplacement(Replacement& replacement) noexcept {
  removeTemporary(replacement);
  const Replacement* mine = &replacement;
  unfinished.compare_exchange_strong(mine, nullptr);
  for (int* const descriptor : {&replacement.descriptor, &replacement.heldTarget, &replacement.directory})
    if (*descriptor >= 0) close(std::exchange(*descriptor, -1));
}

void removeUnfinished() noexcept {
  const Replacement* const replacement = unfinished;
  if (replacement != nullptr) unlinkat(replacement->directory, replacement->temporary, 0);
}

}  // namespace vel::platform
