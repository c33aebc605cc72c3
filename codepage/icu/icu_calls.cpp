// ICU converters keep state from one call to the next. continue...() keeps that state for the next call;
// convert...() resets the converter after an error, because calls of VelClConverterABase::convertBytes are
// independent of each other.
#include "codepage/icu/icu_calls.h"

#include <algorithm>
#include <iterator>

#include "codepage/converters/target_sizes.h"

namespace vel::codepage {

namespace {

/// CCSIDs that are opened by name, because ICU's look-up by number fails or finds another variant (943). The
/// names of a CCSID are tried in order. Those with VSUB and VPUA exist only in ICU data made for this
/// library; any other ICU has the same converters under the names listed after them.
struct NamedConverter {
  std::uint32_t ccsid;
  const char* name;
};
constexpr NamedConverter kNamedConverters[] = {
    {942, "zan-942_VSUB_VPUA"}, {942, "sjis78"}, {932, "zan-942_VSUB_VPUA"}, {932, "sjis78"},
    {943, "zan-943_VSUB_VPUA"}, {943, "cp943c"}, {1392, "gb18030"},          {65502, "LMBCS"},
};

bool isOpenedByName(std::uint32_t ccsid) {
  return std::ranges::find(kNamedConverters, ccsid, &NamedConverter::ccsid) != std::end(kNamedConverters);
}

IcuConverter* openByName(const IcuFunctions& icu, std::uint32_t ccsid, IcuStatus& status) {
  for (const NamedConverter& named : kNamedConverters) {
    if (named.ccsid != ccsid) continue;
    status = kIcuSuccess;
    IcuConverter* const converter = icu.open(named.name, &status);
    // With a warning, ICU still returns a converter.
    if (status <= kIcuSuccess) return converter;
  }
  return nullptr;
}

IcuConverter* openByCcsid(const IcuFunctions& icu, std::uint32_t ccsid, IcuStatus& status) {
  status = kIcuSuccess;
  return icu.openCcsid(static_cast<std::int32_t>(ccsid), 0, &status);
}

/// Resets a converter by flushing it and discarding the output. Converters keep output that did not fit, and
/// incomplete input, for the next call; a call with an empty source and `flush` writes that out and resets
/// them. `flush(status)` makes such a call and sets `status`.
template <typename Flush>
void flushAndDiscard(Flush flush) {
  // A few rounds are enough, since a converter keeps little. The limit is for a faulty converter that
  // overflows every time.
  constexpr int kRounds = 64;
  IcuStatus status = kIcuBufferOverflow;
  for (int round = 0; round < kRounds && status == kIcuBufferOverflow; ++round) {
    status = kIcuSuccess;
    flush(status);
  }
}

}  // namespace

const IcuConverter* openIcuConverter(const IcuFunctions& icu, std::uint32_t ccsid, IcuStatus& status) {
  IcuConverter* const converter =
      isOpenedByName(ccsid) ? openByName(icu, ccsid, status) : openByCcsid(icu, ccsid, status);
  // A negative status is a warning, such as for an ambiguous name.
  if (status > kIcuSuccess || converter == nullptr) return nullptr;
  icu.setFallback(converter, 1);
  return converter;
}

std::size_t continueToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& buffers,
                              bool flush) {
  auto* const begin = reinterpret_cast<char16_t*>(buffers.target);
  // Rounds down: ICU rejects a limit that is not on a unit boundary.
  const char16_t* const limit = begin + buffers.targetSize / sizeof(char16_t);
  char16_t* position = begin;
  buffers.status = kIcuSuccess;
  const char* const end = buffers.source + buffers.sourceSize;
  icu.toUnicode(const_cast<IcuConverter*>(converter), &position, limit, &buffers.source, end, nullptr,
                static_cast<IcuBool>(flush), &buffers.status);
  return static_cast<std::size_t>(position - begin) * sizeof(char16_t);
}

std::size_t continueFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& buffers,
                                bool flush) {
  char* position = buffers.target;
  const auto* source = reinterpret_cast<const char16_t*>(buffers.source);
  const auto* const end = reinterpret_cast<const char16_t*>(buffers.source + buffers.sourceSize);
  buffers.status = kIcuSuccess;
  icu.fromUnicode(const_cast<IcuConverter*>(converter), &position, buffers.target + buffers.targetSize,
                  &source, end, nullptr, static_cast<IcuBool>(flush), &buffers.status);
  buffers.source = reinterpret_cast<const char*>(source);
  return static_cast<std::size_t>(position - buffers.target);
}

std::size_t convertToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& buffers) {
  const std::size_t written = continueToUnicode(icu, converter, buffers, true);
  if (buffers.status == kIcuSuccess) return written;
  flushAndDiscard([&icu, converter](IcuStatus& status) {
    char16_t discarded[64];
    IcuBuffers flushed{reinterpret_cast<char*>(discarded), sizeof discarded, "", 0, 0};
    continueToUnicode(icu, converter, flushed, true);
    status = flushed.status;
  });
  return written;
}

std::size_t convertFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& buffers) {
  const std::size_t written = continueFromUnicode(icu, converter, buffers, true);
  if (buffers.status == kIcuSuccess) return written;
  flushAndDiscard([&icu, converter](IcuStatus& status) {
    char discarded[64];
    alignas(char16_t) const char emptySource[] = "";
    IcuBuffers flushed{discarded, sizeof discarded, emptySource, 0, 0};
    continueFromUnicode(icu, converter, flushed, true);
    status = flushed.status;
  });
  return written;
}

std::size_t sufficientSizeFromUnicode(const IcuFunctions& icu, const IcuConverter* converter,
                                      std::size_t units) noexcept {
  // ICU's own formula, UCNV_GET_MAX_BYTES_FOR_STRING: ten more units cover shifts and escapes at both ends.
  constexpr std::size_t kUnitsForBothEnds = 10;
  return saturatingProduct(units + kUnitsForBothEnds,
                           static_cast<std::size_t>(icu.getMaxCharSize(converter)));
}

}  // namespace vel::codepage
