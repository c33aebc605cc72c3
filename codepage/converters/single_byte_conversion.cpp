// Conversions from single-byte code pages to UCS-2 by table. The look-up itself is a kernel.
#include <cassert>

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"
#include "codepage/tables/single_byte_tables.h"

namespace {

/// The caller has checked that the target is large enough; see requiredTargetSize().
std::size_t convert(vel::codepage::Call& call, bool foldsNextLine) {
  assert(call.sourceSize <= call.targetSize / vel::codepage::kUnitSize);
  const auto* const table = static_cast<const std::uint16_t*>(call.getConversionData());
  // In ISO8859-1 each byte is its own unit, and widening is faster than a look-up. Folding does not matter:
  // the page is not EBCDIC.
  static const std::uint16_t* const iso8859 = velGetSBCStoUCS2Table(819);
  if (table == iso8859)
    vel::codepage::kernels().widen(call.target, *call.source, call.sourceSize);
  else
    vel::codepage::kernels().lookUpBytes(call.target, *call.source, call.sourceSize,
                                         vel::codepage::hostTableOf(table, foldsNextLine));
  *call.source += call.sourceSize;
  return call.sourceSize * vel::codepage::kUnitSize;
}

}  // namespace

size_t velConvertByTablesSBCS_ASCIItoUCS2(VelClConverterABase::_VelStConverter& call) {
  return convert(call, false);
}

size_t velConvertByTablesSBCS_EBCDICtoUCS2(VelClConverterABase::_VelStConverter& call) {
  return convert(call, true);
}
