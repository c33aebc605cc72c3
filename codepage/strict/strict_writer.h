// Writes a code page strictly: what the target lacks is not written.
#pragma once

#include <cstddef>

#include "foundation/allocator.h"
#include "vel_include/vel_strict_conversion.h"

namespace vel::codepage {

/// Gathers what is written for the sink.
class Output {
 public:
  static constexpr std::size_t kCapacity = std::size_t{64} * 1024;

  Output(VelClConversionSink& sink, char* buffer) : sink_(sink), buffer_(buffer) {}

  /// Room for `size` bytes, at most kCapacity.
  char* reserve(std::size_t size) {
    if (kCapacity - used_ < size) flush();
    return buffer_ + used_;
  }
  std::size_t room() const { return kCapacity - used_; }
  void commit(std::size_t size) { used_ += size; }
  void flush() {
    const std::size_t size = used_;
    used_ = 0;
    if (size != 0) sink_.write(buffer_, size);
  }

 private:
  VelClConversionSink& sink_;
  char* buffer_;
  std::size_t used_ = 0;
};

/// What a writer is given at once; every target has room for it in the output.
inline constexpr std::size_t kMaxUnits = 8192;

class Writer {
 public:
  virtual ~Writer() = default;

  /// Writes units that are whole characters, up to the first one that the target lacks; returns how many.
  virtual std::size_t write(const char16_t* units, std::size_t count, Output& output) = 0;
  /// Writes a character, or what the target has in its place.
  virtual void writeOrSubstitute(char32_t character, Output& output) = 0;
  /// Closes shifts.
  virtual void finish(Output&) {}
};

/// Returns the writer of a code page, or of a form of Unicode; the caller destroys it. Null when the target
/// cannot be converted to.
Writer* makeWriter(const VelClCCSID& target);

/// The first character of some units, which must be whole.
struct Character {
  char32_t value;
  std::size_t units;
};
Character characterAt(const char16_t* units);
/// The other way; returns how many units it is.
std::size_t unitsOf(char32_t character, char16_t (&units)[2]);

}  // namespace vel::codepage
