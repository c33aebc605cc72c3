// Converts any bytes by the library's own conversions of UTF-8, single bytes, mixed bytes and UCS-2, and by
// the kernels of a level that the input selects, and compares the results with slow references.
#include "codepage/test/kernel_run.h"
#include "codepage/test/reference_mixed.h"
#include "codepage/test/reference_utf8.h"
#include "fuzz/conversion_run.h"

namespace fuzz::codepage {

namespace {

using vel::codepage::Cursor;
using vel::codepage::Kernels;
using From = VelClCodePage2UnicodeConverter;
using To = VelClUnicode2CodePageConverter;

/// The input's first byte selects the level, by other bits than the code page mostly depends on.
const Kernels& kernelsFor(const Input& input) {
  static const std::vector<vel::codepage::KernelLevel> levels = supportedLevels();
  return *levels[(input.choice * 7 >> 5) % levels.size()].kernels;
}

/// Expects a result only if the target has room for all of it.
void requireAll(const VelClConverterABase& converter, const Input& input, const Outcome& expected) {
  const std::size_t need = expected.bytes.size();
  for (const std::size_t room : {input.source.size() * 2, need, input.room(need), need == 0 ? 0 : need - 1})
    require(convert(converter, input.source, room) == (room >= need ? expected : tooBig("", 0)));
}

// ---- UTF-8 -----------------------------------------------------------------------------------

void requireLoop(void (*loop)(Cursor&) noexcept, decltype(referenceUtf8ToUcs2) reference,
                 std::string_view source, std::size_t room) {
  const Outcome done = runKernel(loop, source, room);
  require(done == reference(source.substr(0, done.consumed), room));
}

void requireUtf8(const Input& input) {
  static const From from{ccsid(1208)};
  static const To to{ccsid(1208)};
  const std::string_view source = input.source;
  const std::size_t room = input.room(source.size() * 2);
  require(convert(from, source, room) == referenceUtf8ToUcs2(source, room));
  require(convert(to, source, room) == referenceUcs2ToUtf8(source, room));
  const Kernels& kernels = kernelsFor(input);
  requireLoop(kernels.decodeUtf8, referenceUtf8ToUcs2, source, room);
  requireLoop(kernels.encodeUtf8, referenceUcs2ToUtf8, source.substr(0, source.size() / 2 * 2), room);
}

// ---- Single bytes ----------------------------------------------------------------------------

std::vector<int> pagesWithTables() {
  std::vector<int> pages;
  for (int number = 0; number < 0x10000; ++number)
    if (velGetSBCStoUCS2Table(static_cast<unsigned int>(number)) != nullptr) pages.push_back(number);
  return pages;
}

Outcome toUcs2(int page, std::string_view source) {
  const uint16_t* const table = velGetSBCStoUCS2Table(static_cast<unsigned int>(page));
  Outcome outcome{"", source.size()};
  for (const char c : source)
    outcome.bytes += unitAt(table, static_cast<unsigned char>(c), ccsid(page).isEBCDIC());
  return outcome;
}

Outcome fromUcs2(int page, std::string_view source) {
  const unsigned char* const table = velGetUCS2toSBCSTable(static_cast<unsigned int>(page));
  Outcome outcome = source.size() % 2 == 0 ? Outcome{} : incomplete("", 0);
  outcome.consumed = source.size() / 2 * 2;
  for (std::size_t i = 0; i < outcome.consumed; i += 2) {
    const auto low = static_cast<unsigned char>(source[i]);
    const auto high = static_cast<unsigned char>(source[i + 1]);
    outcome.bytes += static_cast<char>(page == 819 ? low : table[table[high] * 256U + low]);
  }
  return outcome;
}

void requireSingleBytes(const Input& input) {
  static const std::vector<int> pages = pagesWithTables();
  const int page = pages[input.choice % pages.size()];
  requireAll(From(ccsid(page)), input, toUcs2(page, input.source));
  for (const int number : {500, 850, 819})
    requireAll(To(ccsid(number)), input, fromUcs2(number, input.source));
}

// ---- Mixed bytes -----------------------------------------------------------------------------

void requireMixedBytes(const Input& input) {
  constexpr unsigned int kPages[] = {930, 948, 301, 927, 939, 941, 1351, 1394, 4930, 4933, 5039};
  const unsigned int page = kPages[input.choice % std::size(kPages)];
  bool isEbcdic = false, isDouble = false;
  const VelStDoubleByteTable& table = *velGetDBCStoUCS2Table(page, isEbcdic);
  requireAll(From(ccsid(static_cast<int>(page))), input, referenceMixedToUcs2(table, input.source));
  Outcome done =
      runMixed(kernelsFor(input), table, input.source, input.room(input.source.size() * 2), isDouble);
  const std::string part = std::string(input.source.substr(0, done.consumed)) + (isDouble ? "\x0F" : "");
  done.consumed = part.size();
  require(done == referenceMixedToUcs2(table, part));
}

// ---- UCS-2 -----------------------------------------------------------------------------------

void requireMoves(const Input& input) {
  const std::size_t room = input.room(input.source.size()), size = std::min(input.source.size(), room);
  Outcome expected = size % 2 == 0 ? Outcome{} : incomplete("", 0);
  expected.consumed = size / 2 * 2;
  expected.bytes = input.source.substr(0, expected.consumed);
  for (const int page : {1200, 65500}) {
    if (page == 65500)
      for (std::size_t i = 0; i < expected.consumed; i += 2)
        std::swap(expected.bytes[i], expected.bytes[i + 1]);
    require(convert(From(ccsid(page)), input.source, room) == expected);
    require(convert(To(ccsid(page)), input.source, room) == expected);
  }
}

void run(Bytes bytes) {
  const Input input(bytes);
  requireUtf8(input);
  requireSingleBytes(input);
  requireMixedBytes(input);
  requireMoves(input);
}

const Target target("codepage", run);

}  // namespace

}  // namespace fuzz::codepage
