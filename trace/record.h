// Builds the record of a trace entry in the caller's memory: within an entry, or directly in the ring.
// VelClTraceEntry documents the layout.
//
// Tracing has to cost the program little, so a record is built in one pass and in its final place. Its three
// sections are written in this order: the texts, because the head contains their lengths after compression;
// the head, one store per 4-byte word; the data.
//
//   offset  content                                       written by
//   0       byte 0 (see below), component id, and the     2. storeNumber
//           stored lengths of message and origin
//   4       time, process, thread, length of the data     2. storeNumber, 4 bytes each
//   20      message, then origin                          1. storeText
//   after   data                                          3. copyData
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "base/short_text.h"
#include "platform/clocks.h"
#include "trace/text_compression.h"
#include "vel_include/vel_trace.h"

namespace vel::trace {

inline constexpr std::size_t kHeadLength = 20;
/// The largest size of a record without its data. Building one may overwrite kSlack bytes after it.
inline constexpr std::size_t kMaxRecordSize = kHeadLength + 2 * kMaxCompressedSize;

/// Byte 0 of a record: bits 0 to 4 are the data type, bit 5 says whether the texts are
/// compressed, bits 6 and 7 are the detail.
inline constexpr std::uint32_t kCompressedFlag = 0x20;
/// The bits that are not the detail. A data type is masked with all of them, so that a caller's number from
/// 0x20 to 0x3F sets the flag, too; the types in use are below 0x20.
inline constexpr std::uint32_t kTypeAndCompressedMask = 0x3F;
inline constexpr unsigned int kDetailShift = 6;

/// The arguments of a trace call; nothing is owned.
struct Event {
  VelEnTraceDetail detail;
  unsigned short componentId;
  VelEnTraceDataType type;
  const char* origin;
  const char* message;
  const void* data;
  std::size_t size;
};

/// Makes missing data DATA_NULL of size 0, and clips data that is larger than the ring to DATA_CLIPPED.
inline void fitData(Event& event, std::uint64_t bufferSize) {
  if (event.data == nullptr) {
    event.size = 0;
    event.type = VelEnTraceDataType::DATA_NULL;
  } else if (event.size > bufferSize) {
    event.size = static_cast<std::size_t>(bufferSize);
    event.type = VelEnTraceDataType::DATA_CLIPPED;
  }
}

/// Stores a text, compressed or as it is, and returns the stored size in bytes. Texts are cut at
/// kMaxCompressedSize stored bytes; null is stored as "".
inline std::size_t storeText(const char* text, bool compressed, unsigned char* out) {
  if (text == nullptr) return 0;
  if (compressed) return compress(text, boundedLength(text, kMaxPlainSize), out);
  const std::size_t length = boundedLength(text, kMaxCompressedSize);
  copyShort(out, text, length);
  return length;
}

/// Stores a number in the record's byte order, which is the processor's.
inline void storeNumber(unsigned char* out, std::uint32_t number) {
  static_assert(std::endian::native == std::endian::little);
  std::memcpy(out, &number, sizeof number);
}

/// Builds a record without its data and returns its length. `out` must have room for kMaxRecordSize + kSlack
/// bytes.
inline std::size_t buildRecord(const VelClTraceEnvironment& environment, const Event& event,
                               std::uint32_t thread, unsigned char* out) {
  const bool compressed = environment.getSettings().usesCompression();
  unsigned char* const texts = out + kHeadLength;
  const std::size_t messageLength = storeText(event.message, compressed, texts);
  const std::size_t originLength = storeText(event.origin, compressed, texts + messageLength);
  const auto type = static_cast<std::uint32_t>(event.type) & kTypeAndCompressedMask;
  const auto detail = static_cast<std::uint32_t>(event.detail) & 3;
  // One 4-byte store per word of the head: a wide load right after narrower stores could not be forwarded.
  storeNumber(out, type | (compressed ? kCompressedFlag : 0U) | detail << kDetailShift |
                       (event.componentId & 0xFFU) << 8 | static_cast<std::uint32_t>(messageLength) << 16 |
                       static_cast<std::uint32_t>(originLength) << 24);
  storeNumber(out + 4, platform::tickCount());
  storeNumber(out + 8, environment.getProcessId());
  storeNumber(out + 12, thread);
  storeNumber(out + 16, static_cast<std::uint32_t>(event.size));
  return kHeadLength + messageLength + originLength;
}

/// Copies the data to `out`, the end of the record. Most data is a few bytes, for which a call of memcpy
/// would cost more than the copy.
inline void copyData(unsigned char* out, const Event& event) {
  constexpr std::size_t kShort = 64;
  if (event.size <= kShort)
    copyShort(out, event.data, event.size);
  else
    std::memcpy(out, event.data, event.size);
}

}  // namespace vel::trace
