#include "trace/trace_ring_image.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "trace/trace_record_head.h"

namespace vel::trace {
namespace {

/// The fields of VelClTraceBufferManager::Header. Pointers are those of the process that wrote the ring; the
/// first one, to the start of the data, tells where the others are.
struct Header {
  char signature[4];
  std::uint32_t unused;
  std::uint64_t dataSize, dataStart, dataEnd, save, write;
};
static_assert(sizeof(Header) == 48);

constexpr char kSignature[] = {'V', 'E', 'L', 'T'};

}  // namespace

bool isRing(TraceWindow& window) {
  return window.ensure(0, sizeof(Header)) && std::memcmp(window.at(0), kSignature, sizeof kSignature) == 0;
}

bool readRing(TraceWindow& window, RingImage& image) {
  Header header;
  std::memcpy(&header, window.at(0), sizeof header);
  const std::uint64_t size = header.dataSize, written = header.write - header.dataStart;
  if (size == 0 || size > kMaxDataSize || header.dataEnd - header.dataStart != size - 1 || written > size ||
      !window.ensure(sizeof header, size))
    return false;
  const unsigned char* const start = window.at(sizeof header);
  const unsigned char* const oldest = start + written;
  // The memory of a ring is 0 at first.
  const bool hasWrapped = std::any_of(oldest, start + size, [](unsigned char byte) { return byte != 0; });
  const auto before = static_cast<std::size_t>(hasWrapped ? size - written : 0);
  image.size = before + static_cast<std::size_t>(written);
  image.bytes.reset(VelClMemoryManager::malloc(image.size + 1));
  auto* const out = static_cast<unsigned char*>(image.bytes.get());
  std::memcpy(out, oldest, before);
  std::memcpy(out + before, start, static_cast<std::size_t>(written));
  return true;
}

}  // namespace vel::trace
