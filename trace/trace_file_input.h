// A buffered reader of trace files. It is a stream buffer, because VelClTraceFileEntry reads records from a
// stream, and has additional functions to read and skip the data between them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <streambuf>

#include "foundation/allocator.h"
#include "platform/byte_files.h"

namespace vel::trace {

/// Whether the name is that of a directory, which POSIX systems open for reading, too, and only fail to read.
bool isDirectory(const char* name);

/// Owns the file's descriptor and buffer.
class TraceFileInput final : public std::streambuf {
 public:
  TraceFileInput() = default;
  TraceFileInput(const TraceFileInput&) = delete;
  TraceFileInput& operator=(const TraceFileInput&) = delete;
  ~TraceFileInput() override;

  /// Returns false for a directory and for any file that cannot be opened for reading. Throws if the memory
  /// manager fails. Call it once, before anything else.
  bool open(const char* name);

  /// Returns the number of bytes read, which is less than `count` only
  /// at the end of the file or after a failure.
  std::size_t read(void* out, std::size_t count) {
    if (static_cast<std::size_t>(egptr() - gptr()) < count) return readAcrossRefills(out, count);
    std::memcpy(out, gptr(), count);
    gbump(static_cast<int>(count));
    return count;
  }
  /// Returns false when the file ends before `count` bytes are skipped. A wrong count in a damaged file costs
  /// no more than reading the rest of the file.
  bool skip(std::uint64_t count);
  /// Returns whether reading failed, which the functions above report as the end of the file.
  bool hasFailed() const { return failed_; }

 protected:
  /// Fills the buffer. After a failure to read it reports the end of the file each time.
  int_type underflow() override;
  std::streamsize xsgetn(char* out, std::streamsize count) override {
    return static_cast<std::streamsize>(read(out, static_cast<std::size_t>(count)));
  }

 private:
  static constexpr std::size_t kCapacity = std::size_t{64} * 1024;
  /// Reads more bytes than are buffered.
  std::size_t readAcrossRefills(void* out, std::size_t count) {
    return static_cast<std::size_t>(
        std::streambuf::xsgetn(static_cast<char*>(out), static_cast<std::streamsize>(count)));
  }

  platform::ReadableFile file_;
  bool failed_ = false;
  OwnedText buffer_;
};

}  // namespace vel::trace
