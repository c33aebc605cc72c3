// Reading and writing the bytes of files of any size, and of the standard streams.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/descriptors.h"
#include "platform/system_error.h"

namespace vel::platform {

/// How to treat a named pipe that nobody has open for writing.
enum class PipeWithoutWriter { Refuse, Await };

/// Opens for reading. Names arrive in either style; children do not inherit the descriptor. Does not wait,
/// except for a pipe's writer if asked to; reading from a pipe waits for what its writers send. A refused
/// pipe is ENXIO.
SystemError openForReading(const char* name, PipeWithoutWriter pipe, int& descriptor) noexcept;
void closeDescriptor(int descriptor) noexcept;

/// A file open for reading, which closes itself.
class ReadableFile {
 public:
  ReadableFile() noexcept = default;
  /// Adopts an open descriptor.
  explicit ReadableFile(int descriptor) noexcept : descriptor_(descriptor) {}
  ReadableFile(const ReadableFile&) = delete;
  ReadableFile& operator=(const ReadableFile&) = delete;
  ~ReadableFile() {
    if (isOpen()) closeDescriptor(descriptor_);
  }

  /// To be called once.
  SystemError open(const char* name, PipeWithoutWriter pipe) noexcept {
    const SystemError error = openForReading(name, pipe, descriptor_);
    if (error != 0) descriptor_ = -1;
    return error;
  }
  bool isOpen() const noexcept { return descriptor_ >= 0; }
  int descriptor() const noexcept { return descriptor_; }

 private:
  int descriptor_ = -1;
};

/// Reads at most `capacity` bytes; `size` is how many, 0 at the end.
SystemError readBytes(int descriptor, void* buffer, std::size_t capacity, std::size_t& size) noexcept;
/// Writes all bytes, or fails.
SystemError writeBytes(int descriptor, const void* data, std::size_t size) noexcept;
/// Returns the number of bytes from the position to the end of a regular file; 0 for anything else.
std::uint64_t bytesLeft(int descriptor) noexcept;
/// Whether the position moved forward within a regular file, at most to its end. False, with the position
/// unchanged, for anything that cannot be skipped.
bool skipBytes(int descriptor, std::uint64_t count) noexcept;

}  // namespace vel::platform
