// The target sizes of conversion functions: the size that a call requires, and one that is always sufficient.
#include "codepage/converters/target_sizes.h"

#include "codepage/converters/double_byte_conversion.h"
#include "codepage/icu/icu_conversion.h"

namespace vel::codepage {

std::size_t requiredTargetSize(VelClConverterABase::VelConversionFunction function,
                               const Call& call) noexcept {
  if (function == &velConvertByTablesSBCS_ASCIItoUCS2 || function == &velConvertByTablesSBCS_EBCDICtoUCS2)
    return call.sourceSize * kUnitSize;
  if (function == &velConvertByTablesUCS2toSBCS || function == &velConvertByAlgorithmUCS2to819)
    return call.sourceSize / kUnitSize;
  const bool isMixedAscii = function == &velConvertByTablesDBCS_ASCIItoUCS2;
  if (!isMixedAscii && function != &velConvertByTablesDBCS_EBCDICtoUCS2) return 0;
  // A character has at least one byte and becomes one unit, so twice the source is always enough. Most
  // callers pass that much, which saves the walk over the source.
  if (call.sourceSize * kUnitSize <= call.targetSize) return 0;
  return isMixedAscii ? sizeOfMixedAscii(call) : sizeOfMixedEbcdic(call);
}

std::size_t sufficientTargetSize(VelClConverterABase::VelConversionFunction function,
                                 const Call& call) noexcept {
  // Code pages of systems have at most four bytes for a character. UTF-8 has at most three for a unit: a
  // surrogate pair is four bytes, two for each of its units.
  constexpr std::size_t kMaxSystemBytesPerUnit = 4;
  constexpr std::size_t kMaxUtf8BytesPerUnit = 3;
  const std::size_t size = call.sourceSize;
  const std::size_t units = size / kUnitSize;
  if (function == &velConvertByCopying || function == &velConvertByEndianSwap) return size;
  if (function == &velConvertByTablesUCS2toSBCS || function == &velConvertByAlgorithmUCS2to819) return units;
  if (function == &velConvertByAlgorithmUCS2toUTF8) return saturatingProduct(units, kMaxUtf8BytesPerUnit);
  if (function == &velConvertByAlgorithmIcuFromUnicode) return sufficientIcuTargetSize(call);
  if (function == &velConvertByWindowsCallUCS2ToWinCP)
    return saturatingProduct(units, kMaxSystemBytesPerUnit);
  return saturatingProduct(size, kUnitSize);
}

}  // namespace vel::codepage
