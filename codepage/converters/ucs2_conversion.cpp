// Conversions from UCS-2 in which each unit becomes one unit or byte: copying, swapping bytes, to ISO8859-1,
// and by reverse tables.
#include <algorithm>
#include <cassert>

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

namespace {

using vel::codepage::Call;
using vel::codepage::kUnitSize;

/// Returns the size of the smaller side in bytes, rounded down to whole units. Intentional: reports
/// CPCONVERTER_INCOMPLETE if the smaller side is odd, even if that is the target.
std::size_t wholeUnitsOfBothSides(const Call& call) {
  const std::size_t size = std::min(call.sourceSize, call.targetSize);
  if (size % kUnitSize != 0) call.setError(vel::codepage::kIncomplete);
  return size - size % kUnitSize;
}

}  // namespace

size_t velConvertByCopying(VelClConverterABase::_VelStConverter& call) {
  const std::size_t size = wholeUnitsOfBothSides(call);
  // Pointers may be null when there is nothing to copy, which memcpy does not allow.
  if (size != 0) std::memcpy(call.target, *call.source, size);
  *call.source += size;
  return size;
}

size_t velConvertByEndianSwap(VelClConverterABase::_VelStConverter& call) {
  const std::size_t size = wholeUnitsOfBothSides(call);
  vel::codepage::kernels().swap(call.target, *call.source, size / kUnitSize);
  *call.source += size;
  return size;
}

size_t velConvertByTablesUCS2toSBCS(VelClConverterABase::_VelStConverter& call) {
  const std::size_t units = vel::codepage::countWholeUnits(call);
  // Converters guarantee this: they check requiredTargetSize() before the call.
  assert(units <= call.targetSize);
  vel::codepage::kernels().mapUnits(call.target, *call.source, units,
                                    static_cast<const unsigned char*>(call.getConversionData()));
  *call.source += units * kUnitSize;
  return units;
}

// Intentional: units above 0xFF lose their high byte and nothing is substituted. Callers that must not lose
// data silently use VelClStrictConversion.
size_t velConvertByAlgorithmUCS2to819(VelClConverterABase::_VelStConverter& call) {
  const std::size_t units = vel::codepage::countWholeUnits(call);
  // Guaranteed by the check of requiredTargetSize().
  assert(units <= call.targetSize);
  vel::codepage::kernels().narrow(call.target, *call.source, units);
  *call.source += units * kUnitSize;
  return units;
}
