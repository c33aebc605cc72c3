// Converts 16-bit units in place between little-endian, big-endian and the host's byte order. All supported
// hosts are little-endian, so four of the six functions swap and the other two do nothing. A big-endian port
// has to exchange the host's four functions; the assertion below stops the build there.
#include <bit>
#include <utility>

#include "vel_include/vel_helpers.h"

static_assert(std::endian::native == std::endian::little);

namespace {

/// Swaps the bytes of every whole unit. An odd last byte is not part of a unit and stays unchanged. The
/// buffer need not be aligned, so bytes are swapped and not words.
void swapUnits(void* buffer, size_t byteCount) noexcept {
  auto* const bytes = static_cast<unsigned char*>(buffer);
  for (size_t end = byteCount - byteCount % 2; end != 0; end -= 2) std::swap(bytes[end - 2], bytes[end - 1]);
}

}  // namespace

void velEndianConvertW16LittleToBig(void* buffer, size_t byteCount) {
  swapUnits(buffer, byteCount);
}

void velEndianConvertW16BigToLittle(void* buffer, size_t byteCount) {
  swapUnits(buffer, byteCount);
}

void velEndianConvertW16HostToBig(void* buffer, size_t byteCount) {
  swapUnits(buffer, byteCount);
}

void velEndianConvertW16BigToHost(void* buffer, size_t byteCount) {
  swapUnits(buffer, byteCount);
}

void velEndianConvertW16HostToLittle(void*, size_t) {}

void velEndianConvertW16LittleToHost(void*, size_t) {}
