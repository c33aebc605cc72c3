// The head of a record in a file, and the check whether a record can begin with it.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "trace/record.h"
#include "trace/trace_data_rules.h"

namespace vel::trace {

/// Data is never longer than the largest ring, see VelClTraceEnvironment.
inline constexpr std::uint32_t kMaxDataSize = std::uint32_t{16384} * 1024;

/// The first kHeadLength bytes of a record.
struct RecordHead {
  std::uint8_t typeAndDetail, component, messageLength, originLength;
  std::uint32_t time, process, thread, dataLength;

  static RecordHead at(const unsigned char* bytes) {
    static_assert(sizeof(RecordHead) == kHeadLength && std::endian::native == std::endian::little);
    RecordHead head;
    std::memcpy(&head, bytes, sizeof head);
    return head;
  }

  unsigned int type() const { return typeAndDetail & 0x1F; }
  unsigned int detail() const { return typeAndDetail >> kDetailShift; }
  bool isCompressed() const { return (typeAndDetail & kCompressedFlag) != 0; }
  std::uint32_t textLength() const { return std::uint32_t{messageLength} + originLength; }
  /// The size of the whole record.
  std::uint64_t size() const { return std::uint64_t{kHeadLength} + textLength() + dataLength; }
  /// Whether the length of the data suits the type. Other fields may have any value.
  bool isPossible(const DataLengths& lengths) const {
    return dataLength <= kMaxDataSize && lengths.suit(type(), dataLength);
  }
};

}  // namespace vel::trace
