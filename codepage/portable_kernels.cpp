// The inner loops in plain C++, written so that the compiler can use the vectors that every processor has.
#include "codepage/conversion.h"
#include "codepage/conversion_tables.h"
#include "codepage/kernels.h"

namespace vel::codepage {

namespace {

constexpr std::size_t kAsciiBlock = 16;

/// Units as the tables have them.
constexpr std::uint16_t kStoredNextLine = toHostOrder(kNextLine);
constexpr std::uint16_t kStoredLineFeed = toHostOrder(kLineFeed);

std::uint16_t foldNextLine(std::uint16_t stored) {
  return stored == kStoredNextLine ? kStoredLineFeed : stored;
}

/// Two units at a time change their byte order, and are written, as one number.
template <bool foldsNextLine>
void lookUp(char* __restrict target, const unsigned char* __restrict source, std::size_t size,
            const std::uint16_t* __restrict table) {
  std::size_t i = 0;
  for (; i + 2 <= size; i += 2) {
    std::uint16_t first = table[source[i]];
    std::uint16_t second = table[source[i + 1]];
    // A jump: a selection would cost every unit something.
    if (foldsNextLine && (first == kStoredNextLine || second == kStoredNextLine)) [[unlikely]] {
      first = foldNextLine(first);
      second = foldNextLine(second);
    }
    const std::uint32_t both = __builtin_bswap32(std::uint32_t{first} << 16 | second);
    std::memcpy(target + i * kUnitSize, &both, sizeof both);
  }
  if (i == size) return;
  const std::uint16_t last = table[source[i]];
  writeUnit(target + i * kUnitSize, toHostOrder(foldsNextLine ? foldNextLine(last) : last));
}

void lookUpBytes(char* target, const char* source, std::size_t size, const std::uint16_t* table,
                 bool foldsNextLine) noexcept {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(source);
  foldsNextLine ? lookUp<true>(target, bytes, size, table) : lookUp<false>(target, bytes, size, table);
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
