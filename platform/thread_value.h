// A pointer for each thread, and notice of the thread's end.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Has one value per thread, null at first. When a thread ends with another value, `ended(value)` is called
/// in that thread. Where the system has no room for another such object, all values stay null.
class ThreadValue {
 public:
  explicit ThreadValue(void (*ended)(void*)) noexcept;
  ThreadValue(const ThreadValue&) = delete;
  ThreadValue& operator=(const ThreadValue&) = delete;
  /// `ended` may be called once more for each thread that has a value, and never after that.
  ~ThreadValue();

  /// Return and set the value of the calling thread. Setting returns false where the value stays as it is.
  /// Errors of the program (errno, the system's last error) are preserved.
  void* get() const noexcept;
  bool set(void* value) const noexcept;

 private:
  std::uint32_t key_;
  bool exists_;
};

}  // namespace vel::platform
