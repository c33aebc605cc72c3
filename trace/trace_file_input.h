// The bytes of a trace file, read in large pieces: as a stream buffer for the entries' records, and directly
// for their data.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <streambuf>

#include "foundation/allocator.h"

namespace vel::trace {

class TraceFileInput final : public std::streambuf {
 public:
  TraceFileInput() = default;
  TraceFileInput(const TraceFileInput&) = delete;
  TraceFileInput& operator=(const TraceFileInput&) = delete;
  ~TraceFileInput() override;

  /// False for everything that is no file that can be read.
  bool open(const char* name);

  /// Returns fewer bytes than asked for at the end of the file only.
  std::size_t read(void* out, std::size_t count) {
    if (static_cast<std::size_t>(egptr() - gptr()) < count) return readAcrossRefills(out, count);
    std::memcpy(out, gptr(), count);
    gbump(static_cast<int>(count));
    return count;
  }
  /// False when the file ends before. Takes no longer than reading the rest of the file.
  bool skip(std::uint64_t count);
  /// Whether the end was in fact a failure to read.
  bool hasFailed() const { return failed_; }

 protected:
  /// After a failure to read there is nothing more.
  int_type underflow() override;
  std::streamsize xsgetn(char* out, std::streamsize count) override {
    return static_cast<std::streamsize>(read(out, static_cast<std::size_t>(count)));
  }

 private:
  static constexpr std::size_t kCapacity = 64 * 1024;
  std::size_t readAcrossRefills(void* out, std::size_t count) {
    return static_cast<std::size_t>(
        std::streambuf::xsgetn(static_cast<char*>(out), static_cast<std::streamsize>(count)));
  }

  int descriptor_ = -1;
  bool failed_ = false;
  OwnedText buffer_;
};

}  // namespace vel::trace
