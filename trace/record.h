// The record of a trace entry, built wherever it is to stand: in an entry, or in the ring itself.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "base/short_text.h"
#include "platform/clocks.h"
#include "platform/processes.h"
#include "trace/text_compression.h"
#include "vel_include/vel_trace.h"

namespace vel::trace {

inline constexpr std::size_t kHeadLength = 20;
/// A head and two texts, without data; kSlack bytes more may be overwritten.
inline constexpr std::size_t kLongestRecord = kHeadLength + 2 * kLongestCompressed;

/// What an entry is made of.
struct Event {
  VelEnTraceDetail detail;
  unsigned short componentId;
  VelEnTraceDataType type;
  const char* origin;
  const char* message;
  const void* data;
  std::size_t size;
};

/// Data that is missing or larger than the ring changes size and type.
inline void fitData(Event& event, std::uint64_t bufferSize) {
  if (event.data == nullptr) {
    event.size = 0;
    event.type = VelEnTraceDataType::DATA_NULL;
  } else if (event.size > bufferSize) {
    event.size = static_cast<std::size_t>(bufferSize);
    event.type = VelEnTraceDataType::DATA_CLIPPED;
  }
}

inline std::size_t storeText(const char* text, bool compressed, unsigned char* out) {
  if (text == nullptr) return 0;
  if (compressed) return compress(text, boundedLength(text, kLongestPlain), out);
  const std::size_t length = boundedLength(text, kLongestCompressed);
  copyShort(out, text, length);
  return length;
}

inline void storeNumber(unsigned char* out, std::uint32_t number) {
  static_assert(std::endian::native == std::endian::little);
  std::memcpy(out, &number, sizeof number);
}

/// Builds the record without its data and returns its length.
inline std::size_t buildRecord(const VelClTraceEnvironment& environment, const Event& event,
                               unsigned char* out) {
  const bool compressed = environment.getSettings().usesCompression();
  unsigned char* const texts = out + kHeadLength;
  const std::size_t messageLength = storeText(event.message, compressed, texts);
  const std::size_t originLength = storeText(event.origin, compressed, texts + messageLength);
  const auto type = static_cast<std::uint32_t>(event.type) & 0x3F;
  const auto detail = static_cast<std::uint32_t>(event.detail) & 3;
  // One at a time: a block that is read back at once from single stores would be waited for.
  storeNumber(out, type | (compressed ? 0x20U : 0U) | detail << 6 | (event.componentId & 0xFFU) << 8 |
                       static_cast<std::uint32_t>(messageLength) << 16 |
                       static_cast<std::uint32_t>(originLength) << 24);
  storeNumber(out + 4, platform::tickCount());
  storeNumber(out + 8, environment.getProcessId());
  storeNumber(out + 12, platform::currentThreadId());
  storeNumber(out + 16, static_cast<std::uint32_t>(event.size));
  return kHeadLength + messageLength + originLength;
}

/// Behind the record.
inline void copyData(unsigned char* out, const Event& event) {
  constexpr std::size_t kShort = 64;
  if (event.size <= kShort)
    copyShort(out, event.data, event.size);
  else
    std::memcpy(out, event.data, event.size);
}

}  // namespace vel::trace
