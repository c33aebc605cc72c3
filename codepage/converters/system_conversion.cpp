// The system's conversion to its own code pages, and the function of converters that have no route.
#include "codepage/conversion.h"
#include "platform/code_pages.h"

size_t velConvertByWindowsCallUCS2ToWinCP(VelClConverterABase::_VelStConverter& call) {
  const auto ccsid = static_cast<std::uint32_t>(call.converter.getTargetCCSID().getCCSID());
  const std::size_t written = vel::platform::utf16ToCodePage(
      ccsid, reinterpret_cast<const char16_t*>(*call.source), call.sourceSize / vel::codepage::kUnitSize,
      call.target, call.targetSize);
  // Intentional: CPCONVERTER_TOO_BIG is the documented result of every failure, also for an empty source,
  // which the system refuses; and the source pointer is not advanced, even on success.
  if (written == 0) call.setError(vel::codepage::kTooBig);
  return written;
}

size_t velConvertError(VelClConverterABase::_VelStConverter& call) {
  call.setError(vel::codepage::kUnsupported);
  return 0;
}
