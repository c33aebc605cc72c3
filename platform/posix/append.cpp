// Appending to files from within a program that must not notice any failure.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "platform/platform.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

/// Holds back the signals that end a process for a write beyond its limit of file sizes or into a pipe that
/// nobody reads; those that came meanwhile are dropped.
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

/// Another user can have linked a second name to a file that they may write to. Who else may read it was
/// decided by its owner.
bool isOwnFile(int descriptor) noexcept {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
         status.st_nlink <= 1 && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

void moveOn(iovec& piece, std::size_t count) noexcept {
  piece.iov_base = static_cast<char*>(piece.iov_base) + count;
  piece.iov_len -= count;
}

}  // namespace

LastErrors lastErrors() noexcept {
  return {errno, 0};
}

void setLastErrors(const LastErrors& errors) noexcept {
  errno = errors.runtime;
}

int openForAppending(const char* name, AppendTo target, SystemError& error) noexcept {
  const NativePath path(name);
  error = ENAMETOOLONG;
  if (!path.fits()) return -1;
  // A pipe without a reader is a failure and nothing to wait for.
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  const int flags = target == AppendTo::OwnFile ? kFlags | O_NOFOLLOW : kFlags;
  int descriptor = -1;
  do descriptor = open(path.get(), flags, S_IRUSR | S_IWUSR);
  while (descriptor < 0 && errno == EINTR);
  error = descriptor < 0 ? errno : 0;
  if (descriptor < 0 || target == AppendTo::AnyFile || isOwnFile(descriptor)) return descriptor;
  close(descriptor);
  error = EPERM;
  return -1;
}

std::uint64_t appendBytes(int descriptor, const Bytes& first, const Bytes& second,
                          SystemError& error) noexcept {
  WriteSignalsHeld signals;
  iovec pieces[] = {{const_cast<char*>(first.data), first.size},
                    {const_cast<char*>(second.data), second.size}};
  const std::size_t total = first.size + second.size;
  std::size_t written = 0;
  error = 0;
  while (written < total) {
    const ssize_t count = writev(descriptor, pieces, 2);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      error = count < 0 ? errno : EIO;
      signals.writeFailed();
      break;
    }
    const auto step = static_cast<std::size_t>(count);
    const std::size_t ofFirst = step < pieces[0].iov_len ? step : pieces[0].iov_len;
    moveOn(pieces[0], ofFirst);
    moveOn(pieces[1], step - ofFirst);
    written += step;
  }
  return written;
}

int closeAppended(int descriptor) noexcept {
  return close(descriptor);
}

}  // namespace vel::platform
