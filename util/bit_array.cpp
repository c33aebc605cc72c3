// Implements the bit array and its persistent form. Access to single bits is inline in the header.
//
// Two sizes can differ after reading a stream: bitCount_ is what the stream said, allocated_ is what this
// array has had since it was built. Every access to bits_ is therefore bounded by the smaller of the two, so
// that a corrupt or foreign stream cannot make the array read or write beyond its memory.
#include <algorithm>
#include <bit>
#include <cstring>
#include <istream>
#include <limits>
#include <ostream>
#include <utility>

#include "vel_include/vel_memmgr.h"
#include "vel_include/vel_util.h"

namespace {

/// The persistent form is limited to what a signed 32-bit byte count can express.
constexpr std::uint64_t kMaxPersistentBytes = std::numeric_limits<std::int32_t>::max();

unsigned char* allocate(std::uint64_t size) {
  return static_cast<unsigned char*>(VelClMemoryManager::malloc(static_cast<size_t>(size)));
}

}  // namespace

VelClPersistencyABase::~VelClPersistencyABase() = default;

VelClBitArray::VelClBitArray(size_t bitCount)
    : bitCount_(bitCount), bits_(allocate(getNumOfBytes())), allocated_(getNumOfBytes()) {
  resetAll();
}

VelClBitArray::VelClBitArray(const VelClBitArray& other)
    : VelClPersistencyABase(other),
      bitCount_(other.bitCount_),
      bits_(allocate(other.allocated_)),
      allocated_(other.allocated_) {
  std::memcpy(bits_, other.bits_, static_cast<size_t>(allocated_));
}

// Copies first and swaps then, so that a failed allocation leaves this array unchanged.
VelClBitArray& VelClBitArray::operator=(const VelClBitArray& other) {
  VelClBitArray copy(other);
  std::swap(bitCount_, copy.bitCount_);
  std::swap(bits_, copy.bits_);
  std::swap(allocated_, copy.allocated_);
  return *this;
}

VelClBitArray::~VelClBitArray() {
  VelClMemoryManager::free(bits_);
}

std::uint64_t VelClBitArray::usableBytes() const {
  return std::min(getNumOfBytes(), allocated_);
}

void VelClBitArray::write(std::ostream& stream) const {
  const std::uint64_t size = usableBytes();
  if (size > kMaxPersistentBytes) {
    stream.setstate(std::ios::failbit);
    return;
  }
  stream.write(reinterpret_cast<const char*>(&bitCount_), sizeof bitCount_);
  stream.write(reinterpret_cast<const char*>(bits_), static_cast<std::streamsize>(size));
}

void VelClBitArray::read(std::istream& stream) {
  const std::uint64_t size = usableBytes();
  if (size > kMaxPersistentBytes) {
    stream.setstate(std::ios::failbit);
    return;
  }
  std::uint64_t bitCount = 0;
  // Read into a local variable: a truncated bit count must not change the array.
  if (!stream.read(reinterpret_cast<char*>(&bitCount), sizeof bitCount)) return;
  // Intentional: the memory is not resized, and `size` bytes are read whatever the stream's array had; the
  // documented use is to read into an array of the same size.
  bitCount_ = bitCount;
  stream.read(reinterpret_cast<char*>(bits_), static_cast<std::streamsize>(size));
}

bool VelClBitArray::operator==(const VelClBitArray& other) const {
  const std::uint64_t size = usableBytes();
  return other.allocated_ >= size && std::memcmp(bits_, other.bits_, static_cast<size_t>(size)) == 0;
}

// Counts whole bytes first. The last byte may have bits above bitCount_, which must not count, so its bits
// are tested one by one.
size_t VelClBitArray::getNumOfSetBits() const {
  const auto whole = static_cast<size_t>(std::min(bitCount_ / 8, allocated_));
  size_t count = 0;
  for (size_t i = 0; i < whole; ++i) count += static_cast<size_t>(std::popcount(bits_[i]));
  for (size_t bit = whole * 8; hasBit(bit); ++bit) count += test(bit) ? 1U : 0U;
  return count;
}

void VelClBitArray::resetAll() {
  std::memset(bits_, 0, static_cast<size_t>(allocated_));
}
