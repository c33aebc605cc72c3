// Appends to files on behalf of a program that must not notice any failure: no signal, no changed errno, no
// wait for the reader of a pipe.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "platform/append.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/native_path.h"
#include "platform/posix/opening.h"
#include "platform/system_error.h"

namespace vel::platform {

namespace {

/// Blocks SIGXFSZ and SIGPIPE, which end a process that writes beyond its file size limit or into a pipe that
/// nobody reads. Both are sent to the writing thread, so one that a failed write raised is still pending here
/// and is consumed before the mask is restored. A signal that was pending before is not this write's and
/// stays.
class WriteSignalsHeld {
 public:
  WriteSignalsHeld() {
    sigemptyset(&held_);
    sigaddset(&held_, SIGXFSZ);
    sigaddset(&held_, SIGPIPE);
    sigset_t pending{};
    sigpending(&pending);
    for (const int signal : {SIGXFSZ, SIGPIPE})
      if (sigismember(&pending, signal) == 1) sigdelset(&held_, signal);
    pthread_sigmask(SIG_BLOCK, &held_, &before_);
  }
  WriteSignalsHeld(const WriteSignalsHeld&) = delete;
  WriteSignalsHeld& operator=(const WriteSignalsHeld&) = delete;
  ~WriteSignalsHeld() {
    const timespec atOnce{};
    if (failed_)
      while (sigtimedwait(&held_, nullptr, &atOnce) > 0) {
      }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

  void writeFailed() { failed_ = true; }

 private:
  sigset_t held_{};
  sigset_t before_{};
  bool failed_ = false;
};

/// Refuses files that another user can write to or has linked under a second name: in a shared directory they
/// could have been planted so that the caller's bytes land elsewhere. Read permission does not matter; the
/// owner granted it.
bool isOwnFile(int descriptor) noexcept {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
         status.st_nlink <= 1 && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

/// Drops the bytes that a short write has written.
void advance(iovec& piece, std::size_t count) noexcept {
  piece.iov_base = static_cast<char*>(piece.iov_base) + count;
  piece.iov_len -= count;
}

}  // namespace

LastErrorsKept::LastErrorsKept() noexcept : runtime_(errno), system_(0) {}

LastErrorsKept::~LastErrorsKept() {
  errno = runtime_;
}

SystemError openForAppendingAt(int directory, const char* path, AppendTo target, Descriptor& file) noexcept {
  // Without O_NONBLOCK, opening a pipe would wait for a reader.
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  const int flags = target == AppendTo::OwnFile ? kFlags | O_NOFOLLOW : kFlags;
  constexpr mode_t kShared = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  const mode_t mode = target == AppendTo::SharedFile ? kShared : S_IRUSR | S_IWUSR;
  file = Descriptor(retrying([&] { return openat(directory, path, flags, mode); }));
  if (!file.isOpen()) return errno;
  // Checked on the descriptor: the name may lead to another file since the open.
  return target == AppendTo::OwnFile && !isOwnFile(file.get()) ? EPERM : 0;
}

SystemError openForAppending(const char* name, AppendTo target, int& descriptor) noexcept {
  const NativePath path(name);
  if (!path.fits()) return ENAMETOOLONG;
  Descriptor file;
  const SystemError error = openForAppendingAt(AT_FDCWD, path.get(), target, file);
  if (error == 0) descriptor = file.release();
  return error;
}

SystemError appendBytes(int descriptor, const Bytes& first, const Bytes& second,
                        std::uint64_t& written) noexcept {
  WriteSignalsHeld signals;
  iovec pieces[] = {{const_cast<char*>(first.data), first.size},
                    {const_cast<char*>(second.data), second.size}};
  const std::size_t total = first.size + second.size;
  written = 0;
  while (written < total) {
    // One call for both pieces: with O_APPEND the entries of other processes are before or after, not
    // between.
    const ssize_t count = retrying([&] { return writev(descriptor, pieces, 2); });
    if (count <= 0) {
      signals.writeFailed();
      return count < 0 ? errno : EIO;
    }
    const auto step = static_cast<std::size_t>(count);
    const std::size_t ofFirst = step < pieces[0].iov_len ? step : pieces[0].iov_len;
    advance(pieces[0], ofFirst);
    advance(pieces[1], step - ofFirst);
    written += step;
  }
  return 0;
}

// An interrupted close has closed the descriptor all the same, and says nothing about the bytes.
SystemError closeAppended(int descriptor) noexcept {
  return close(descriptor) == 0 || errno == EINTR ? 0 : errno;
}

}  // namespace vel::platform
