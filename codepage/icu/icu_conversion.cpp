// Converters and conversions of the ICU that this process found.
#include "codepage/icu/icu_conversion.h"

#include "codepage/icu/icu_calls.h"

namespace {

using vel::codepage::Call;
using vel::codepage::IcuBuffers;
using vel::codepage::IcuConverter;
using vel::codepage::IcuFunctions;
using vel::codepage::IcuStatus;

using Conversion = std::size_t (*)(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text);

std::size_t convert(Call& call, Conversion conversion) {
  IcuBuffers text{call.target, call.targetSize, *call.source, call.sourceSize, 0};
  const std::size_t written = conversion(*vel::codepage::installedIcu(), call.getConversionData(), text);
  *call.source = text.source;
  _VelStError error;
  // It throws for warnings, too. Keep.
  VelClIcuInterface::mapIcuError(error, text.status);
  call.setError(error);
  return written;
}

}  // namespace

std::size_t vel::codepage::sufficientSizeFromIcu(const Call& call) noexcept {
  return sufficientSizeFromUnicode(*installedIcu(), call.getConversionData(), call.sourceSize / kUnitSize);
}

const void* velGetICUConverter(unsigned int ccsid, _VelStError& error) {
  IcuStatus status = vel::codepage::kIcuUnsupported;
  const IcuFunctions* const icu = vel::codepage::installedIcu();
  const IcuConverter* const converter =
      icu != nullptr ? vel::codepage::openIcuConverter(*icu, ccsid, status) : nullptr;
  if (converter == nullptr) VelClIcuInterface::mapIcuError(error, status);
  return converter;
}

void velDeleteICUConverter(const void* converter) {
  if (converter != nullptr) vel::codepage::installedIcu()->close(const_cast<IcuConverter*>(converter));
}

size_t velConvertByAlgorithmIcuToUnicode(VelClConverterABase::_VelStConverter& call) {
  return convert(call, &vel::codepage::convertToUnicode);
}

size_t velConvertByAlgorithmIcuFromUnicode(VelClConverterABase::_VelStConverter& call) {
  return convert(call, &vel::codepage::convertFromUnicode);
}
