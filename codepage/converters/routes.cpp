// Chooses the conversion function of a converter by its CCSID: algorithms and tables of the library first,
// since they are fastest and the same everywhere; then ICU; then, from UCS-2 only, the system. The functions
// themselves are in the other files of this folder and in icu/.
#include "codepage/ccsid_search.h"
#include "codepage/conversion.h"
#include "platform/code_pages.h"

namespace {

enum class Direction { ToUcs2, FromUcs2 };

/// The directions in which an alias is resolved.
enum class Resolved { ToUcs2Only, BothWays };

struct Alias {
  std::uint32_t ccsid;
  std::uint32_t target;
  Resolved resolved;
};

// CCSIDs that use the table or the ICU converter of another CCSID.
// Intentional: from UCS-2 most are not resolved. Callers that write 5026 get ICU's own converter, or none,
// not that of 930.
constexpr Alias kAliases[] = {
    {936, 1386, Resolved::ToUcs2Only}, {938, 948, Resolved::ToUcs2Only},  {954, 33722, Resolved::ToUcs2Only},
    {5026, 930, Resolved::ToUcs2Only}, {5035, 939, Resolved::ToUcs2Only}, {5488, 1392, Resolved::BothWays},
    {18030, 1392, Resolved::BothWays},
};
static_assert(std::ranges::is_sorted(kAliases, {}, &Alias::ccsid));

std::uint32_t resolveAlias(std::uint32_t ccsid, Direction direction) {
  const Alias* const alias = vel::codepage::findByCcsid(kAliases, ccsid);
  if (alias == nullptr) return ccsid;
  if (direction == Direction::FromUcs2 && alias->resolved == Resolved::ToUcs2Only) return ccsid;
  return alias->target;
}

/// Returns the function that converts a form of UCS-2 to or from UCS-2 in host order; null for any other
/// CCSID. Swapping bytes is its own inverse, so both directions share it.
VelClConverterABase::VelConversionFunction functionBetweenUcs2(std::uint32_t ccsid) {
  switch (ccsid) {
    case VelClCCSID::CCSID_UCS2_BIG_ENDIAN:
      return &velConvertByEndianSwap;
    case VelClCCSID::CCSID_UCS2_LITTLE_ENDIAN:
    case VelClCCSID::CCSID_UCS2:
    case VelClCCSID::CCSID_61955:
    case VelClCCSID::CCSID_17584:
    case VelClCCSID::CCSID_1200:
      return &velConvertByCopying;
    default:
      return nullptr;
  }
}

/// Returns whether the CCSID is one of the system's code pages. 0 is the value of an unknown CCSID, and of a
/// system whose code page cannot be determined; these two must not match.
bool isCodePageOfSystem(std::uint32_t ccsid) {
  return ccsid != 0 && (ccsid == vel::platform::ansiCodePage() || ccsid == vel::platform::oemCodePage());
}

}  // namespace

void VelClConverterABase::initCodePage2Unicode() {
  lastError_.reset();
  const std::uint32_t ccsid = source_.getCCSID();
  if (const VelConversionFunction function = functionBetweenUcs2(ccsid))
    return useFunction(function, nullptr);
  if (ccsid == VelClCCSID::CCSID_UTF8) return useFunction(&velConvertByAlgorithmUTF8toUCS2, nullptr);
  const std::uint32_t resolved = resolveAlias(ccsid, Direction::ToUcs2);
  if (const uint16_t* const table = velGetSBCStoUCS2Table(resolved)) {
    return useFunction(
        source_.isEBCDIC() ? &velConvertByTablesSBCS_EBCDICtoUCS2 : &velConvertByTablesSBCS_ASCIItoUCS2,
        table);
  }
  bool isEbcdic = false;
  if (const VelStDoubleByteTable* const table = velGetDBCStoUCS2Table(resolved, isEbcdic)) {
    return useFunction(isEbcdic ? &velConvertByTablesDBCS_EBCDICtoUCS2 : &velConvertByTablesDBCS_ASCIItoUCS2,
                       table);
  }
  if (!useIcu(resolved, &velConvertByAlgorithmIcuToUnicode)) useNothing();
}

void VelClConverterABase::initUnicode2CodePage() {
  lastError_.reset();
  const std::uint32_t ccsid = target_.getCCSID();
  if (const VelConversionFunction function = functionBetweenUcs2(ccsid))
    return useFunction(function, nullptr);
  if (const unsigned char* const table = velGetUCS2toSBCSTable(ccsid))
    return useFunction(&velConvertByTablesUCS2toSBCS, table);
  if (ccsid == VelClCCSID::CCSID_819) return useFunction(&velConvertByAlgorithmUCS2to819, nullptr);
  if (ccsid == VelClCCSID::CCSID_UTF8) return useFunction(&velConvertByAlgorithmUCS2toUTF8, nullptr);
  const std::uint32_t resolved = resolveAlias(ccsid, Direction::FromUcs2);
  if (useIcu(resolved, &velConvertByAlgorithmIcuFromUnicode)) return;
  if (isCodePageOfSystem(resolved)) return useFunction(&velConvertByWindowsCallUCS2ToWinCP, nullptr);
  useNothing();
}

void VelClConverterABase::useFunction(VelConversionFunction function, const void* data) {
  conversionData_ = data;
  function_ = function;
}

bool VelClConverterABase::useIcu(uint32_t ccsid, VelConversionFunction function) {
  _VelStError error;
  const void* const converter = velGetICUConverter(ccsid, error);
  // If memory ran out, it is unknown whether ICU has the page. The error stays visible, so that callers can
  // tell this from a page that ICU does not have.
  if (error.errorClass == VelEnErrorClass::OUT_OF_MEMORY) lastError_ = error;
  if (converter == nullptr) return false;
  useFunction(function, converter);
  return true;
}

void VelClConverterABase::useNothing() {
  setConversionByUsingIconv();
  setConverterError();
  if (lastError_.errorId == VEL_NO_ERROR) lastError_ = vel::codepage::kUnsupported;
}
