// Reads the bytes of one file or of standard input, from an offset on and up to a length. The offset may
// count from the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "platform/byte_files.h"

namespace vel::veldump {

struct Range {
  std::uint64_t offset = 0;
  bool isFromEnd = false;  ///< `offset` is the number of bytes before the end
  std::uint64_t length = std::numeric_limits<std::uint64_t>::max();
};

class ByteSource {
 public:
  /// Opens a file; null is standard input.
  explicit ByteSource(const char* name);
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  ~ByteSource() = default;

  bool isOpen() const { return file_.isOpen() || descriptor_ == platform::kStandardInput; }
  /// Whether a read failed. read() reports a failure like the end of the bytes.
  bool hasFailed() const { return failed_; }
  /// Skips the bytes before the range and ends reading at its end. Makes an offset from the end one from the
  /// start; there may be fewer bytes. Returns false if the bytes end before the range begins.
  bool narrow(Range& range);
  /// Returns how many bytes can be read, or 0 if that is not known in advance.
  std::uint64_t expectedBytes() const;
  /// Reads the next bytes and returns their number, at least one; 0 at the end or after a failure.
  std::size_t read(void* buffer, std::size_t capacity);

 private:
  void keepTail(Range& range);
  std::size_t readKept(void* buffer, std::size_t size);

  platform::ReadableFile file_;
  int descriptor_ = platform::kStandardInput;
  bool failed_ = false;
  std::uint64_t left_ = Range().length;
  std::vector<char> tail_;  ///< the last bytes of a pipe, if the range counts from its end
  std::size_t tailDone_ = 0;
  bool hasTail_ = false;
};

}  // namespace vel::veldump
