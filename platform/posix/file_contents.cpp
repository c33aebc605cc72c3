// Reads, appends to, replaces and copies files by names of any length. The steps of replacing are those of
// saving, see replacing.cpp and beside.cpp.
#include "platform/file_contents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/append.h"
#include "platform/byte_files.h"
#include "platform/posix/access_list.h"
#include "platform/posix/beside.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/fast_copy.h"
#include "platform/posix/opening.h"
#include "platform/posix/permissions.h"
#include "platform/posix/place.h"
#include "platform/posix/replacing_at.h"
#include "platform/posix/target.h"

namespace vel::platform {

namespace {

constexpr mode_t kAllModeBits = 07777;
constexpr mode_t kAccessBits = 0777;
/// How often somebody else may replace or create the target first, before this gives up.
constexpr int kMaxCopies = 16;

NativeError numberOf(SystemError error) noexcept {
  return static_cast<NativeError>(error);
}

/// Removes bytes that were appended just now, if they are still the last ones.
void removeAppended(int descriptor, std::uint64_t count) noexcept {
  struct stat status;
  if (count == 0 || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return;
  const off_t end = lseek(descriptor, 0, SEEK_CUR);
  if (end == status.st_size && end >= static_cast<off_t>(count))
    static_cast<void>(retrying([&] { return ftruncate(descriptor, end - static_cast<off_t>(count)); }) == 0);
}

SystemError appendAt(const Place& place, const Bytes& bytes) noexcept {
  Descriptor file;
  SystemError error = openForAppendingAt(place.directory(), place.name(), AppendTo::SharedFile, file);
  if (error == 0) error = letWait(file.get());
  if (error != 0) return error;
  std::uint64_t written = 0;
  error = appendBytes(file.get(), bytes, {}, written);
  if (error == 0) error = flushWrites(file.get());
  if (error != 0) removeAppended(file.get(), written);
  return error;
}

SystemError replaceAt(const Place& place, const void* data, std::size_t size) noexcept {
  Replacement replacement;
  SystemError error = startReplacementAt(place.directory(), place.name(), replacement);
  if (error != 0) return error;
  error = writeBytes(replacement.descriptor, data, size);
  if (error == 0) return finishReplacement(replacement);
  dropReplacement(replacement);
  return error;
}

/// A copy under way.
struct Job {
  int source;
  struct stat status;
  CopyOptions options;
};

/// Refuses what must not be replaced. The source itself under another name would be destroyed.
SystemError checkReplaced(const Replacement& target, const Job& job) noexcept {
  struct stat status;
  if (!job.options.replaces) return EEXIST;
  if (const SystemError error = statusOfRegularFile(target.heldTarget, status); error != 0) return error;
  if (identityOf(status) == identityOf(job.status)) return EINVAL;
  return isReadOnly(status) ? EACCES : 0;
}

/// Times and access lists are kept as far as the file system can.
void keepRights(int target, const Job& job) noexcept {
  const mode_t mode = job.status.st_mode & kAccessBits;
  const bool keepsList = copyAccessList(job.source, target);
  // A list may have refused single users.
  static_cast<void>(fchmod(target, keepsList ? mode : mode & S_IRWXU));
  const timespec times[] = {job.status.st_atim, job.status.st_mtim};
  static_cast<void>(futimens(target, times));
}

/// A replaced file keeps its own rights, unless those of the source are to be kept.
void setRights(const Replacement& target, const Job& job) noexcept {
  struct stat old;
  if (job.options.keepsRights)
    keepRights(target.descriptor, job);
  else if (target.heldTarget >= 0 && fstat(target.heldTarget, &old) == 0)
    copyRights(target, old.st_mode & kAllModeBits);
}

SystemError fillCopy(int target, const Job& job) noexcept {
  if (lseek(job.source, 0, SEEK_SET) < 0) return errno;
  SystemError error = copyInKernel(job.source, target, static_cast<std::uint64_t>(job.status.st_size));
  if (error == 0) error = copyByReading(job.source, target);
  return error;
}

/// The permissions at first. Those of a new copy are final, because only the creation applies the file mode
/// creation mask.
mode_t firstModeOf(const Replacement& target, const Job& job) noexcept {
  const bool isNew = target.heldTarget < 0 && !job.options.keepsRights;
  return isNew ? job.status.st_mode & kAccessBits : mode_t{S_IRUSR | S_IWUSR};
}

SystemError placeWritten(Replacement& target, const Job& job) noexcept {
  setRights(target, job);
  SystemError error = job.options.waitsForDisk ? store(target.descriptor) : 0;
  if (error == 0) error = flushWrites(target.descriptor);
  if (error == 0) error = moveIntoPlace(target);
  if (error != 0 || !job.options.waitsForDisk) return error;
  error = storeDirectory(target);
  // The caller keeps the source then, so the copy is too many, unless it has replaced something.
  if (error != 0 && target.heldTarget < 0) unlinkat(target.directory, target.target, 0);
  return error;
}

SystemError copyOnce(const Place& place, const Job& job, CopySide& failed) noexcept {
  struct stat status;
  failed = CopySide::Target;
  const bool isThere = fstatat(place.directory(), place.name(), &status, AT_SYMLINK_NOFOLLOW) == 0;
  if (isThere && !job.options.replaces) return EEXIST;
  BesideTarget target;
  SystemError error = findTargetAt(place.directory(), place.name(), LastLink::Follow, target);
  if (error == 0 && target.heldTarget >= 0) error = checkReplaced(target, job);
  if (error == 0) error = createBeside(firstModeOf(target, job), BesideName::None, target);
  if (error == 0) error = fillCopy(target.descriptor, job);
  return error == 0 ? placeWritten(target, job) : error;
}

}  // namespace

SourceFile::~SourceFile() {
  if (handle_ >= 0) close(static_cast<int>(handle_));
}

NativeError SourceFile::open(const char* name) noexcept {
  const Place place(name);
  if (place.error() != 0) return numberOf(place.error());
  Descriptor file;
  const SystemError error =
      openForReadingAt(place.directory(), place.name(), PipeWithoutWriter::Refuse, file);
  if (error == 0) handle_ = file.release();
  return numberOf(error);
}

NativeError SourceFile::read(void* buffer, std::size_t capacity, std::size_t& size) noexcept {
  return numberOf(readBytes(static_cast<int>(handle_), buffer, capacity, size));
}

std::uint64_t SourceFile::sizeLeft() const noexcept {
  return bytesLeft(static_cast<int>(handle_));
}

NativeError appendTo(const char* name, const void* data, std::size_t size) noexcept {
  const Place place(name);
  if (place.error() != 0) return numberOf(place.error());
  return numberOf(appendAt(place, {static_cast<const char*>(data), size}));
}

NativeError replaceContents(const char* name, const void* data, std::size_t size) noexcept {
  const Place place(name);
  return numberOf(place.error() != 0 ? place.error() : replaceAt(place, data, size));
}

NativeError copyContents(const char* from, const char* to, const CopyOptions& options,
                         CopySide& failed) noexcept {
  const Place source(from), target(to);
  failed = source.error() != 0 ? CopySide::Source : CopySide::Target;
  for (const Place* place : {&source, &target})
    if (place->error() != 0) return numberOf(place->error());
  failed = CopySide::Source;
  const Descriptor file(
      retrying([&] { return openat(source.directory(), source.name(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
  Job job{file.get(), {}, options};
  if (const SystemError error = statusOfRegularFile(file.get(), job.status); error != 0)
    return numberOf(error);
  SystemError error = 0;
  int attempt = 0;
  // ECANCELED and EEXIST: somebody changed the target meanwhile. Start again with what is there now.
  do error = copyOnce(target, job, failed);
  while ((error == ECANCELED || (error == EEXIST && options.replaces)) && ++attempt < kMaxCopies);
  return numberOf(error);
}

bool isOtherFileSystem(NativeError error) noexcept {
  return error == EXDEV;
}

}  // namespace vel::platform
