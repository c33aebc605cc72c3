// ICU converters keep state from one call to the next. The functions for pieces leave it to the caller; those
// for whole texts always end with an empty converter, because VelClConverterABase keeps nothing between
// calls.
#include "codepage/icu/icu_calls.h"

#include "codepage/converters/target_sizes.h"

namespace vel::codepage {

namespace {

/// Converters that are opened by name, the first name that ICU knows: by its number ICU would open another
/// edition of 943, for example. The names with VSUB and VPUA exist only in ICU data made for this library;
/// the ones after them are the same converters in any other ICU.
struct NamedConverter {
  std::uint32_t ccsid;
  const char* name;
};
constexpr NamedConverter kNamedConverters[] = {
    {942, "zan-942_VSUB_VPUA"}, {942, "sjis78"}, {932, "zan-942_VSUB_VPUA"}, {932, "sjis78"},
    {943, "zan-943_VSUB_VPUA"}, {943, "cp943c"}, {1392, "gb18030"},          {65502, "LMBCS"},
};

IcuConverter* openByName(const IcuFunctions& icu, std::uint32_t ccsid, bool& hasName, IcuStatus& status) {
  hasName = false;
  for (const NamedConverter& named : kNamedConverters) {
    if (named.ccsid != ccsid) continue;
    hasName = true;
    status = kIcuSuccess;
    IcuConverter* const converter = icu.open(named.name, &status);
    // A warning comes with a converter.
    if (status <= kIcuSuccess) return converter;
  }
  return nullptr;
}

/// Empties a converter. Converters keep output that did not fit, and incomplete input, for the next call; an
/// empty source with "flush" makes them write it out and start anew. `drop` makes such a call and sets the
/// status.
template <typename Drop>
void dropPending(Drop drop) {
  // A few rounds are always enough, since little fits into a converter. The bound keeps one that overflows
  // for ever from hanging its caller.
  constexpr int kRounds = 64;
  IcuStatus status = kIcuBufferOverflow;
  for (int round = 0; round < kRounds && status == kIcuBufferOverflow; ++round) {
    status = kIcuSuccess;
    drop(status);
  }
}

}  // namespace

const IcuConverter* openIcuConverter(const IcuFunctions& icu, std::uint32_t ccsid, IcuStatus& status) {
  bool hasName = false;
  IcuConverter* converter = openByName(icu, ccsid, hasName, status);
  if (!hasName) {
    status = kIcuSuccess;
    converter = icu.openCcsid(static_cast<std::int32_t>(ccsid), 0, &status);
  }
  // A negative status is a warning, such as for an ambiguous name.
  if (status > kIcuSuccess || converter == nullptr) return nullptr;
  icu.setFallback(converter, 1);
  return converter;
}

std::size_t continueToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text,
                              bool isEnd) {
  auto* const begin = reinterpret_cast<char16_t*>(text.target);
  // Rounds down: ICU takes a limit within a unit for an invalid argument.
  const char16_t* const limit = begin + text.targetSize / sizeof(char16_t);
  char16_t* position = begin;
  text.status = kIcuSuccess;
  const char* const end = text.source + text.sourceSize;
  icu.toUnicode(const_cast<IcuConverter*>(converter), &position, limit, &text.source, end, nullptr,
                static_cast<IcuBool>(isEnd), &text.status);
  return static_cast<std::size_t>(position - begin) * sizeof(char16_t);
}

std::size_t continueFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text,
                                bool isEnd) {
  char* position = text.target;
  const auto* source = reinterpret_cast<const char16_t*>(text.source);
  const auto* const end = reinterpret_cast<const char16_t*>(text.source + text.sourceSize);
  text.status = kIcuSuccess;
  icu.fromUnicode(const_cast<IcuConverter*>(converter), &position, text.target + text.targetSize, &source,
                  end, nullptr, static_cast<IcuBool>(isEnd), &text.status);
  text.source = reinterpret_cast<const char*>(source);
  return static_cast<std::size_t>(position - text.target);
}

std::size_t convertToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text) {
  const std::size_t written = continueToUnicode(icu, converter, text, true);
  if (text.status == kIcuSuccess) return written;
  dropPending([&icu, converter](IcuStatus& status) {
    char16_t scrap[64];
    IcuBuffers nothing{reinterpret_cast<char*>(scrap), sizeof scrap, "", 0, 0};
    continueToUnicode(icu, converter, nothing, true);
    status = nothing.status;
  });
  return written;
}

std::size_t convertFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text) {
  const std::size_t written = continueFromUnicode(icu, converter, text, true);
  if (text.status == kIcuSuccess) return written;
  dropPending([&icu, converter](IcuStatus& status) {
    char scrap[64];
    alignas(char16_t) const char none[] = "";
    IcuBuffers nothing{scrap, sizeof scrap, none, 0, 0};
    continueFromUnicode(icu, converter, nothing, true);
    status = nothing.status;
  });
  return written;
}

std::size_t sufficientSizeFromUnicode(const IcuFunctions& icu, const IcuConverter* converter,
                                      std::size_t units) noexcept {
  // ICU's own formula, UCNV_GET_MAX_BYTES_FOR_STRING: ten units more account for shifts and escapes at both
  // ends.
  constexpr std::size_t kForBothEnds = 10;
  return saturatingProduct(units + kForBothEnds, static_cast<std::size_t>(icu.getMaxCharSize(converter)));
}

}  // namespace vel::codepage
