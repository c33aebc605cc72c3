// Converts any bytes by a strict conversion of any kind: the result must depend neither on the pieces nor on
// earlier conversions.
#include "codepage/test/strict_run.h"
#include "fuzz/bytes.h"

namespace fuzz::codepage_strict {

namespace {

using Policy = VelClStrictConversion::VelEnPolicy;

// Algorithms, tables of single bytes, of lead bytes and of shifts; then what ICU converts: single bytes, lead
// bytes, shifts, three and four bytes. The last one cannot be converted.
constexpr int kPages[] = {1208, 13488, 65500, 819, 37,   500,  850,   838, 301,  948,  1394, 930,  4933, 1047,
                          5348, 943,   949,   933, 1388, 1390, 33722, 964, 1392, 1383, 1051, 5050, 4};

void run(Bytes bytes) {
  const VelClCCSID source(kPages[bytes.byte() % std::size(kPages)]);
  const VelClCCSID target(kPages[bytes.byte() % std::size(kPages)]);
  const unsigned int options = bytes.byte();
  const std::size_t longest = 2 + bytes.byte() % 64U;
  const std::string_view text = bytes.rest();
  VelClStrictConversion conversion(source, target, static_cast<Policy>(options % 4));
  conversion.setNextLineFolding((options & 4) != 0);
  const StrictResult whole = convertInPieces(conversion, text, {});
  require(conversion.isSupported() || (whole.bytes.empty() && whole.faults == "clean"));
  require(convertInPieces(conversion, text, endsOfPieces(text.size(), 1)) == whole);
  require(convertInPieces(conversion, text, endsOfPieces(text.size(), longest)) == whole);
  require(convertInPieces(conversion, text, {text.size() / 2, text.size() / 2}) == whole);
  require(convertInPieces(conversion, text, {}) == whole);
  FaultList handler(static_cast<Policy>(options % 4));
  require(convertInPieces(conversion, text, endsOfPieces(text.size(), longest), &handler) == whole);
  require(handler.faults().size() == conversion.getFaultCount());
}

const Target target("codepage_strict", run);

}  // namespace

}  // namespace fuzz::codepage_strict
