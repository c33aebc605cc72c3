// The bytes of one file or of standard input, within an offset and a length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "platform/byte_files.h"

namespace vel::veldump {

struct Range {
  std::uint64_t offset = 0;
  std::uint64_t length = std::numeric_limits<std::uint64_t>::max();
};

class ByteSource {
 public:
  /// Null is standard input.
  explicit ByteSource(const char* name);
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  ~ByteSource() = default;

  bool isOpen() const { return file_.isOpen() || descriptor_ == platform::kStandardInput; }
  /// Whether a read failed, which then looked like the end.
  bool hasFailed() const { return failed_; }
  /// Leaves out what is before the range and behind it. False when the bytes end before it.
  bool narrow(const Range& range);
  /// How many bytes will come, as far as that is known before; else 0.
  std::uint64_t expectedBytes() const;
  /// The next bytes, at least one; 0 at the end.
  std::size_t read(void* buffer, std::size_t capacity);

 private:
  platform::ReadableFile file_;
  int descriptor_ = platform::kStandardInput;
  bool failed_ = false;
  std::uint64_t left_ = Range().length;
};

}  // namespace vel::veldump
