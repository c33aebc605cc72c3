// Appends little-endian integers to growing bytes, the counterpart of byte_view.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/allocator.h"

namespace vel::messages {

/// Appends to bytes that it does not own.
class ByteWriter {
 public:
  explicit ByteWriter(Vector<std::uint8_t>& bytes) noexcept : bytes_(bytes) {}

  std::size_t size() const noexcept { return bytes_.size(); }
  void add16(std::uint64_t value) { addInteger(value, 2); }
  void add32(std::uint64_t value) { addInteger(value, 4); }
  void add64(std::uint64_t value) { addInteger(value, 8); }
  void add(const std::uint8_t* bytes, std::size_t size) { bytes_.insert(bytes_.end(), bytes, bytes + size); }
  void addZeros(std::size_t count) { bytes_.resize(bytes_.size() + count); }
  /// Appends zeros up to a multiple of `alignment`.
  void align(std::size_t alignment) { addZeros((alignment - size() % alignment) % alignment); }

 private:
  void addInteger(std::uint64_t value, unsigned sizeInBytes) {
    for (unsigned i = 0; i < sizeInBytes; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }

  Vector<std::uint8_t>& bytes_;
};

}  // namespace vel::messages
