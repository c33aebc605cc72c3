// Reading and writing the bytes of files of any size, and of the standard streams.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/descriptors.h"
#include "platform/system_error.h"

namespace vel::platform {

/// How to treat a named pipe that nobody has open for writing.
enum class PipeWithoutWriter { Refuse, Wait };

/// Opens for reading. Names may have either kind of separator; children do not inherit the descriptor. With
/// Wait, waits until a pipe has a writer; with Refuse, fails with ENXIO if nobody has it open for writing.
/// Reading from a pipe waits for what its writers send.
SystemError openForReading(const char* name, PipeWithoutWriter pipe, int& descriptor) noexcept;
/// As openForReading with Refuse. Others may remove and rename the file while it is open, on Windows too.
SystemError openForSharedReading(const char* name, int& descriptor) noexcept;
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

  /// Call at most once, on a closed file: a descriptor that is open would leak.
  SystemError open(const char* name, PipeWithoutWriter pipe) noexcept {
    const SystemError error = openForReading(name, pipe, descriptor_);
    if (error != 0) descriptor_ = -1;
    return error;
  }
  /// As open, by openForSharedReading.
  SystemError openShared(const char* name) noexcept {
    const SystemError error = openForSharedReading(name, descriptor_);
    if (error != 0) descriptor_ = -1;
    return error;
  }
  bool isOpen() const noexcept { return descriptor_ >= 0; }
  int descriptor() const noexcept { return descriptor_; }

 private:
  int descriptor_ = -1;
};

/// Reads at most `capacity` bytes and sets `size` to the number read, 0 at the end. Standard input and output
/// that are a Windows console get and give UTF-8, see console_text.h.
SystemError readBytes(int descriptor, void* buffer, std::size_t capacity, std::size_t& size) noexcept;
/// Writes all bytes, or fails.
SystemError writeBytes(int descriptor, const void* data, std::size_t size) noexcept;
/// Returns the number of bytes from the position to the end of a regular file; 0 for anything else.
std::uint64_t bytesLeft(int descriptor) noexcept;
/// Moves the position forward by `count` bytes, at most to the end of a regular file. Returns false if it did
/// not move: at the end, and for anything but a regular file.
bool skipBytes(int descriptor, std::uint64_t count) noexcept;

}  // namespace vel::platform
