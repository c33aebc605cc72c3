// Byte order of 16-bit units; hosts are little-endian.
#include <bit>
#include <utility>

#include "vel_include/vel_helpers.h"

static_assert(std::endian::native == std::endian::little);

namespace {

/// From the last whole unit to the first.
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
