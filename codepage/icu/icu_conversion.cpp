// The public functions that open, use and close converters of the installed ICU. Every call but the opening
// relies on a converter that was opened, and so on ICU being there.
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
  // Intentional: mapIcuError throws for statuses without an identifier, warnings among them; the documented
  // result is the exception ICU_UNEXPECTED_ICU_ERROR.
  VelClIcuInterface::mapIcuError(error, text.status);
  call.setError(error);
  return written;
}

}  // namespace

std::size_t vel::codepage::sufficientSizeFromIcu(const Call& call) noexcept {
  return sufficientSizeFromUnicode(*installedIcu(), call.getConversionData(), call.sourceSize / kUnitSize);
}

const void* velGetICUConverter(unsigned int ccsid, _VelStError& error) {
  // Without ICU every page gets the status that ICU has for unsupported operations.
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
