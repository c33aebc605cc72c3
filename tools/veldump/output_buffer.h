// Gathers output, so that the system is called once for very many lines.
#pragma once

#include <cstddef>
#include <memory>

namespace vel::veldump {

/// Thrown when the output cannot be written; nothing goes on after that.
struct OutputFailure {};

class OutputBuffer {
 public:
  /// Writes all bytes somewhere; false when it cannot.
  using Sink = bool (*)(const char* bytes, std::size_t size);

  explicit OutputBuffer(Sink sink);

  static constexpr std::size_t kCapacity = std::size_t{256} * 1024;

  /// Room for `size` characters, at most kCapacity, at the end of the buffer; taken by `commit`.
  char* reserve(std::size_t size);
  void commit(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }
  void append(const char* text, std::size_t size);
  void flush();

 private:
  Sink sink_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
};

}  // namespace vel::veldump
