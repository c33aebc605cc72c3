// The inner loops in plain C++, written so that the compiler can use the vectors that every processor has.
#include <algorithm>

#include "codepage/conversion.h"
#include "codepage/conversion_tables.h"
#include "codepage/kernels.h"

namespace vel::codepage {

namespace {

/// So many units stay in the processor's first cache between two loops.
constexpr std::size_t kLookUpBlock = 512;
constexpr std::size_t kAsciiBlock = 16;

void lookUpStored(char* __restrict target, const unsigned char* __restrict source, std::size_t size,
                  const std::uint16_t* __restrict table) {
  for (std::size_t i = 0; i < size; ++i) writeUnit(target + i * kUnitSize, table[source[i]]);
}

template <bool foldsNextLine>
void toHostOrder(char* target, std::size_t units) {
  for (std::size_t i = 0; i < units; ++i) {
    std::uint16_t unit = vel::codepage::toHostOrder(readUnit(target + i * kUnitSize));
    if (foldsNextLine) unit = unit == kNextLine ? kLineFeed : unit;
    writeUnit(target + i * kUnitSize, unit);
  }
}

void lookUpBytes(char* target, const char* source, std::size_t size, const std::uint16_t* table,
                 bool foldsNextLine) noexcept {
  while (size != 0) {
    const std::size_t units = std::min(size, kLookUpBlock);
    lookUpStored(target, reinterpret_cast<const unsigned char*>(source), units, table);
    foldsNextLine ? toHostOrder<true>(target, units) : toHostOrder<false>(target, units);
    source += units;
    target += units * kUnitSize;
    size -= units;
  }
}

bool isAsciiBlock(const char* source) {
  std::uint64_t words[kAsciiBlock / 8];
  std::memcpy(words, source, sizeof words);
  return ((words[0] | words[1]) & 0x8080808080808080) == 0;
}

void decodeUtf8(Progress& progress) noexcept {
  while (progress.sourceSize() >= kAsciiBlock && progress.targetSize() >= kAsciiBlock * kUnitSize &&
         isAsciiBlock(progress.source)) {
    std::uint16_t units[kAsciiBlock];
    for (std::size_t i = 0; i < kAsciiBlock; ++i) units[i] = static_cast<unsigned char>(progress.source[i]);
    std::memcpy(progress.target, units, sizeof units);
    progress.source += kAsciiBlock;
    progress.target += sizeof units;
  }
}

bool isAsciiUnits(const std::uint16_t (&units)[kAsciiBlock]) {
  std::uint64_t words[kAsciiBlock / 4];
  std::memcpy(words, units, sizeof words);
  return ((words[0] | words[1] | words[2] | words[3]) & 0xFF80FF80FF80FF80) == 0;
}

void encodeUtf8(Progress& progress) noexcept {
  std::uint16_t units[kAsciiBlock];
  while (progress.sourceSize() >= sizeof units && progress.targetSize() >= kAsciiBlock) {
    std::memcpy(units, progress.source, sizeof units);
    if (!isAsciiUnits(units)) return;
    char bytes[kAsciiBlock];
    for (std::size_t i = 0; i < kAsciiBlock; ++i) bytes[i] = static_cast<char>(units[i]);
    std::memcpy(progress.target, bytes, sizeof bytes);
    progress.source += sizeof units;
    progress.target += sizeof bytes;
  }
}

}  // namespace

constinit const Kernels kPortableKernels{&lookUpBytes, &decodeUtf8, &encodeUtf8};

}  // namespace vel::codepage
