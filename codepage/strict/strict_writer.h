// The interface of strict writers, and their output. A writer converts UTF-16 to bytes and stops before the
// first unmappable character; strict_conversion.cpp decides whether to replace it, escape it or stop.
#pragma once

#include <cstddef>

#include "foundation/allocator.h"
#include "vel_include/vel_strict_conversion.h"

namespace vel::codepage {

/// Buffers bytes for the sink, so that the sink is called once for many characters. Also says who handles
/// faults, since both are arguments of a call and not properties of the conversion.
class Output {
 public:
  static constexpr std::size_t kCapacity = std::size_t{64} * 1024;

  Output(VelClConversionSink& sink, char* buffer, VelClConversionFaultHandler* handler = nullptr)
      : sink_(sink), buffer_(buffer), handler_(handler) {}

  /// Returns the handler of the faults found while this output is written, or null.
  VelClConversionFaultHandler* handler() const { return handler_; }

  /// Returns the write position, with room for at least `size` bytes, at most kCapacity. May flush. Writes
  /// nothing; follow with commit().
  char* reserve(std::size_t size) {
    if (kCapacity - used_ < size) flush();
    return buffer_ + used_;
  }
  std::size_t room() const { return kCapacity - used_; }
  void commit(std::size_t size) { used_ += size; }
  /// Hands the bytes to the sink. The buffer counts as empty even if the sink throws.
  void flush() {
    const std::size_t size = used_;
    used_ = 0;
    if (size != 0) sink_.write(buffer_, size);
  }

 private:
  VelClConversionSink& sink_;
  char* buffer_;
  VelClConversionFaultHandler* handler_;
  std::size_t used_ = 0;
};

/// The most units per call of Writer::write: the bytes of this many fit into the output for every target.
inline constexpr std::size_t kMaxUnits = 8192;

class Writer {
 public:
  virtual ~Writer() = default;

  /// Writes `units`, which are whole characters, up to the first unmappable one; returns the number of units
  /// written.
  virtual std::size_t write(const char16_t* units, std::size_t count, Output& output) = 0;
  /// Writes a character, or the target's best fit or substitute for it.
  virtual void writeOrSubstitute(char32_t character, Output& output) = 0;
  /// Ends the text: writes a shift-in if it is in double-byte mode.
  virtual void finish(Output&) {}
};

/// Returns a new writer of a code page or a form of Unicode, or null if the target cannot be converted to.
/// The caller destroys the writer.
Writer* makeWriter(const VelClCCSID& target);

/// A character and the number of its units, 1 or 2.
struct Character {
  char32_t value;
  std::size_t units;
};
/// Decodes the first character of UTF-16 in which every surrogate is paired.
Character decodeFirst(const char16_t* units);
/// Writes a character as UTF-16 and returns the number of its units.
std::size_t encodeUtf16(char32_t character, char16_t (&units)[2]);

}  // namespace vel::codepage
