// Conversions from UCS-2 that look at one unit at a time: copying, swapping bytes, to ISO8859-1, and by the
// reverse tables.
#include <algorithm>
#include <cassert>

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

namespace {

using vel::codepage::Call;
using vel::codepage::kUnitSize;

/// Returns the bytes that fit into both sides, rounded down to whole units.
std::size_t determineCommonSize(const Call& call) {
  const std::size_t size = std::min(call.sourceSize, call.targetSize);
  // Intentional: the documented result of an odd size is CPCONVERTER_INCOMPLETE, even if the target is the
  // odd side.
  if (size % kUnitSize != 0) call.setError(vel::codepage::kIncomplete);
  return size - size % kUnitSize;
}

/// `pages` has the layout of velGetUCS2toSBCSTable: the first 256 bytes map the high byte of a unit to the
/// page that has its low byte.
void lookUpUnits(char* __restrict target, const char* __restrict source, std::size_t units,
                 const unsigned char* __restrict pages) {
  for (std::size_t i = 0; i < units; ++i) {
    const std::uint16_t unit = vel::codepage::readUnit(source + i * kUnitSize);
    target[i] = static_cast<char>(pages[pages[unit >> 8] * 256U + (unit & 0xFFU)]);
  }
}

}  // namespace

size_t velConvertByCopying(VelClConverterABase::_VelStConverter& call) {
  const std::size_t size = determineCommonSize(call);
  // Pointers may be null when there is nothing to copy, which memcpy does not allow.
  if (size != 0) std::memcpy(call.target, *call.source, size);
  *call.source += size;
  return size;
}

size_t velConvertByEndianSwap(VelClConverterABase::_VelStConverter& call) {
  const std::size_t size = determineCommonSize(call);
  vel::codepage::kernels().swap(call.target, *call.source, size / kUnitSize);
  *call.source += size;
  return size;
}

size_t velConvertByTablesUCS2toSBCS(VelClConverterABase::_VelStConverter& call) {
  const std::size_t units = vel::codepage::countWholeUnits(call);
  assert(units <= call.targetSize);
  lookUpUnits(call.target, *call.source, units, static_cast<const unsigned char*>(call.getConversionData()));
  *call.source += units * kUnitSize;
  return units;
}

// Intentional: units above 0xFF lose their high byte and nothing is substituted. Callers that must not lose
// data silently use VelClStrictConversion.
size_t velConvertByAlgorithmUCS2to819(VelClConverterABase::_VelStConverter& call) {
  const std::size_t units = vel::codepage::countWholeUnits(call);
  assert(units <= call.targetSize);
  vel::codepage::kernels().narrow(call.target, *call.source, units);
  *call.source += units * kUnitSize;
  return units;
}
