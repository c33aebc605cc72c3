// Owns file descriptors (RAII), and repeats calls that a signal interrupted.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace vel::platform {

/// Calls a system function again while it fails with EINTR. `call` returns -1 on failure.
template <typename Call>
auto retrying(Call call) noexcept {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

/// Owns a file descriptor.
class Descriptor {
 public:
  Descriptor() noexcept = default;
  explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : descriptor_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  /// Preserves errno, so that an early return can report it.
  ~Descriptor() {
    const int error = errno;
    if (isOpen()) close(descriptor_);
    errno = error;
  }

  bool isOpen() const noexcept { return descriptor_ >= 0; }
  int get() const noexcept { return descriptor_; }
  int release() noexcept { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

}  // namespace vel::platform
