// Converts any bytes with ICU, in both directions and through two stages: a converter that has been used must
// give the same result as a new one, and may throw only one exception.
#include "fuzz/conversion_run.h"
#include "vel_include/vel_error.h"

namespace fuzz::codepage_icu {

namespace {

/// Returns nothing if the conversion throws.
std::optional<Outcome> tryConvert(const VelClConverterABase& converter, std::string_view source,
                                  std::size_t room) {
  try {
    return convert(converter, source, room);
  } catch (const VelClException& exception) {
    require(exception.getId() == ICU_UNEXPECTED_ICU_ERROR);
    return std::nullopt;
  }
}

/// Expects a converter that was used with small targets and incomplete sources to give the result of a new
/// one.
template <typename Converter, typename... Pages>
void requireNoMemory(const Input& input, std::string_view last, Pages... pages) {
  const Converter used(ccsid(pages)...), unused(ccsid(pages)...);
  const std::size_t room = input.room(input.source.size() * 2);
  tryConvert(used, input.source, room / 2);
  tryConvert(used, input.source.substr(0, input.source.size() / 2), room);
  tryConvert(used, input.source, room);
  require(tryConvert(used, last, room) == tryConvert(unused, last, room));
}

void run(Bytes bytes) {
  // Single bytes, double bytes with and without shifts, four bytes, escapes, and pages without ICU.
  constexpr int kPages[] = {943,  1392, 933,  949, 950,  964, 33722, 1399, 1390,
                            1388, 813,  1140, 932, 1383, 930, 37,    1047, 5};
  const Input input(bytes);
  const int page = kPages[input.choice % std::size(kPages)];
  requireNoMemory<VelClCodePage2UnicodeConverter>(input, input.source, page);
  requireNoMemory<VelClCodePage2UTF8Converter>(input, input.source, page);
  // From Unicode, ICU itself remembers which of two substitution characters it has used last.
  requireNoMemory<VelClUnicode2CodePageConverter>(input, std::string_view("A\0a\0 \0001\0", 8), page);
  requireNoMemory<VelClCodePage2CodePageConverter>(input, "Aa 1", 1208, page);
}

const Target target("codepage_icu", run);

}  // namespace

}  // namespace fuzz::codepage_icu
