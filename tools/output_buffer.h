// Collects output, so that one system call writes very many lines.
#pragma once

#include <cstddef>
#include <memory>

namespace vel::tools {

/// Thrown when the output cannot be written. The tool reports it and ends.
struct OutputFailure {};

class OutputBuffer {
 public:
  /// Writes all bytes, or returns false.
  using Sink = bool (*)(const char* bytes, std::size_t size);

  explicit OutputBuffer(Sink sink);

  static constexpr std::size_t kCapacity = std::size_t{256} * 1024;

  /// Returns a pointer to room for `size` characters, at most kCapacity; flushes if there is too little. Call
  /// commit with the end of the characters that were written there.
  char* reserve(std::size_t size);
  void commit(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }
  void append(const char* text, std::size_t size);
  void flush();

 private:
  Sink sink_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
};

}  // namespace vel::tools
