// Creates the temporary file beside a target, gives it the target's rights and moves it into place. Locating
// the target is target.cpp's work; the order of the steps is decided in replacing.cpp and file_copy.cpp.
//
// The file is written without a name if the file system allows it (O_TMPFILE on Linux), so that a crash
// leaves no file behind. Naming it cannot overwrite an existing target, so an unnamed file gets a random name
// first and is renamed over the target; with no target it is linked directly under its final name:
//
//   no target:   unnamed --link--> target            (EEXIST if somebody was faster)
//   target:      unnamed --link--> ~random.tmp --rename--> target
//
// Without unnamed files the first step creates ~random.tmp, which is renamed in both cases. Readers see the
// complete old or the complete new contents, because rename() is atomic. Signals that end the process are
// blocked while a random name exists that is not yet recorded in `unfinished`.
#include "platform/posix/beside.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

#include "platform/byte_files.h"
#include "platform/posix/access_list.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/rename.h"
#include "platform/posix/target.h"
#include "platform/posix/unnamed_file.h"
#include "platform/signals.h"

namespace vel::platform {

namespace {

constexpr mode_t kPermissionBits = 07777;
/// Bounds the search for a free name. With 60 random bits even one collision is unlikely.
constexpr int kMaxNames = 100;

/// The replacement whose temporary file a signal handler is to remove. Only files that have a name are
/// recorded; an unnamed one vanishes with its descriptor.
std::atomic<const Replacement*> unfinished{nullptr};

/// Blocks the signals that end programs, so that none arrives between creating a file and recording its name,
/// or between two steps that belong together. Preserves errno.
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

/// Makes an unpredictable name of 20 characters, so that nobody can create the file, or a link in its place,
/// beforehand.
SystemError makeTemporaryName(Replacement& replacement) noexcept {
  std::uint64_t number = 0;
  if (getentropy(&number, sizeof number) != 0) return errno;
  snprintf(replacement.temporary, sizeof replacement.temporary, "~%015llx.tmp",
           static_cast<unsigned long long>(number >> 4));
  return 0;
}

/// Calls `make` with new names until one is free. `make` returns false and sets errno on failure; any error
/// but EEXIST ends the loop.
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

/// Moves the file to a name that does not exist. Neither way replaces an entry that appears meanwhile.
SystemError moveToNewName(Replacement& replacement) noexcept {
  if (replacement.temporary[0] == '\0')
    return nameUnnamed(replacement.descriptor, replacement.directory, replacement.target);
  const int directory = replacement.directory;
  return renameWithoutReplacing(directory, replacement.temporary, directory, replacement.target);
}

/// Replaces the target. The check just before the rename narrows the moment in which a file that somebody
/// else has put in the target's place would be lost; POSIX does not provide a rename that compares the
/// target.
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

SystemError linkBeside(const char* text, Replacement& replacement) noexcept {
  replacement.isBeside = true;
  const EndingSignalsHeld held;
  const SystemError error = makeUnderNewName(
      replacement, [&] { return symlinkat(text, replacement.directory, replacement.temporary) == 0; });
  if (error == 0) unfinished = &replacement;
  return error;
}

// Only root can give files away; otherwise try to keep the group. Permissions must not pass to somebody else
// when an owner, group or list is lost:
// - owner lost: drop the set-user-ID bit;
// - group lost: drop the group bits. Members of the old group now count as others, so others keep only the
//   bits that the group had too, or a refusal would be lifted;
// - list lost: drop group and other bits, because the list may have refused single users.
// The result is read back instead of trusting fchown: some file systems set the wanted owner by themselves
// and refuse the call. Ownership is changed before permissions, because fchown clears the set-ID bits.
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
  // Closing any descriptor of a file makes network file systems report deferred write errors.
  const int second = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
  return second < 0 || close(second) == 0 || errno == EINTR ? 0 : errno;
}

SystemError store(int descriptor) noexcept {
  // EINVAL and ENOSYS: the file system cannot synchronise this kind of file.
  return retrying([&] { return fsync(descriptor); }) == 0 || errno == EINVAL || errno == ENOSYS ? 0 : errno;
}

SystemError storeDirectory(const Replacement& replacement) noexcept {
  // The held descriptor was opened only as a place, which fsync refuses.
  const Descriptor directory(openat(replacement.directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A directory that may be written but not read cannot be opened for fsync; that is not an error of this
  // save.
  if (!directory.isOpen()) return errno == EACCES ? 0 : errno;
  return store(directory.get());
}

void closeReplacement(Replacement& replacement) noexcept {
  removeTemporary(replacement);
  // Leave the record alone if it is that of a newer replacement.
  const Replacement* mine = &replacement;
  unfinished.compare_exchange_strong(mine, nullptr);
  for (int* const descriptor : {&replacement.descriptor, &replacement.heldTarget, &replacement.directory})
    if (*descriptor >= 0) close(std::exchange(*descriptor, -1));
}

SystemError statusOfRegularFile(int descriptor, struct stat& status) noexcept {
  status = {};
  if (descriptor < 0 || fstat(descriptor, &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return S_ISREG(status.st_mode) ? 0 : EINVAL;
}

SystemError copyByReading(int source, int target) noexcept {
  std::array<char, 65536> buffer;
  for (;;) {
    std::size_t size = 0;
    if (const SystemError error = readBytes(source, buffer.data(), buffer.size(), size); error != 0)
      return error;
    if (size == 0) return 0;
    if (const SystemError error = writeBytes(target, buffer.data(), size); error != 0) return error;
  }
}

void removeUnfinished() noexcept {
  const Replacement* const replacement = unfinished;
  if (replacement != nullptr) unlinkat(replacement->directory, replacement->temporary, 0);
}

}  // namespace vel::platform
