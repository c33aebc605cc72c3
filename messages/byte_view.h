// A read-only view of untrusted bytes: reads little-endian integers and checks that they are within the view.
// Their meaning is left to the parsers of the files.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::messages {

/// Does not own the bytes.
class ByteView {
 public:
  ByteView() noexcept = default;
  ByteView(const std::uint8_t* data, std::size_t size) noexcept
      : data_(data), size_(data == nullptr ? 0 : size) {}

  std::size_t size() const noexcept { return size_; }

  /// Returns whether the `length` bytes from `offset` on are within the view. Cannot overflow.
  bool holds(std::uint64_t offset, std::uint64_t length) const noexcept {
    return offset <= size_ && length <= size_ - offset;
  }

  /// Returns the bytes from `offset` on. Not checked: call holds() first.
  const std::uint8_t* at(std::uint64_t offset) const noexcept { return data_ + offset; }

  /// Read an integer. Return false and leave `value` unchanged if one of its bytes is outside the view.
  bool read16(std::uint64_t offset, std::uint16_t& value) const noexcept {
    if (!holds(offset, 2)) return false;
    const std::uint8_t* bytes = at(offset);
    value = static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
    return true;
  }

  bool read32(std::uint64_t offset, std::uint32_t& value) const noexcept {
    if (!holds(offset, 4)) return false;
    const std::uint8_t* bytes = at(offset);
    value = bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8 |
            static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
    return true;
  }

 private:
  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace vel::messages
