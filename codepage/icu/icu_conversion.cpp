// The public functions that open, use and close converters of the installed ICU. Only velGetICUConverter runs
// without ICU; the others get a converter that it opened, so ICU is installed.
#include "codepage/icu/icu_conversion.h"

#include "codepage/icu/icu_calls.h"

namespace {

using vel::codepage::Call;
using vel::codepage::IcuBuffers;
using vel::codepage::IcuConverter;
using vel::codepage::IcuFunctions;
using vel::codepage::IcuStatus;

using Conversion = std::size_t (*)(const IcuFunctions& icu, const IcuConverter* converter,
                                   IcuBuffers& buffers);

std::size_t convert(Call& call, Conversion conversion) {
  IcuBuffers buffers{call.target, call.targetSize, *call.source, call.sourceSize, 0};
  const std::size_t written = conversion(*vel::codepage::installedIcu(), call.getConversionData(), buffers);
  *call.source = buffers.source;
  _VelStError error;
  // Intentional: for statuses without an error identifier, warnings among them, mapIcuError throws an
  // exception with ICU_UNEXPECTED_ICU_ERROR.
  VelClIcuInterface::mapIcuError(error, buffers.status);
  call.setError(error);
  return written;
}

}  // namespace

std::size_t vel::codepage::sufficientIcuTargetSize(const Call& call) noexcept {
  return sufficientSizeFromUnicode(*installedIcu(), call.getConversionData(), call.sourceSize / kUnitSize);
}

const void* velGetICUConverter(unsigned int ccsid, _VelStError& error) {
  // Without ICU every CCSID fails with ICU's status for unsupported operations.
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
