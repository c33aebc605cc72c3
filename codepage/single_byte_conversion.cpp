// Conversions from single bytes to UCS-2 by the tables.
#include <cassert>

#include "codepage/conversion.h"
#include "codepage/conversion_tables.h"

namespace {

using vel::codepage::Call;
using vel::codepage::kUnitSize;

template <bool foldsNextLine>
void lookUpBytes(char* __restrict target, const char* __restrict source, std::size_t size,
                 const std::uint16_t* __restrict table) {
  for (std::size_t i = 0; i < size; ++i) {
    std::uint16_t unit = vel::codepage::toHostOrder(table[static_cast<unsigned char>(source[i])]);
    if (foldsNextLine && unit == vel::codepage::kNextLine) unit = vel::codepage::kLineFeed;
    vel::codepage::writeUnit(target + i * kUnitSize, unit);
  }
}

template <bool foldsNextLine>
std::size_t convert(Call& call) {
  assert(call.sourceSize <= call.targetSize / kUnitSize);
  const auto* const table = static_cast<const std::uint16_t*>(call.getConversionData());
  lookUpBytes<foldsNextLine>(call.target, *call.source, call.sourceSize, table);
  *call.source += call.sourceSize;
  return call.sourceSize * kUnitSize;
}

}  // namespace

size_t velConvertByTablesSBCS_ASCIItoUCS2(VelClConverterABase::_VelStConverter& call) {
  return convert<false>(call);
}

size_t velConvertByTablesSBCS_EBCDICtoUCS2(VelClConverterABase::_VelStConverter& call) {
  return convert<true>(call);
}
