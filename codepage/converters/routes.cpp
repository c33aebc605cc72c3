// Which way a conversion takes, by its CCSID: own algorithms and tables first, then ICU, then the system.
#include "codepage/conversion.h"
#include "platform/platform.h"

namespace {

struct Alias {
  std::uint32_t ccsid;
  std::uint32_t resolved;
};

// Tables and ICU know these under other numbers; from UCS-2 only the first two count. Keep.
constexpr Alias kAliases[] = {{18030, 1392}, {5488, 1392}, {5026, 930}, {5035, 939},
                              {936, 1386},   {938, 948},   {954, 33722}};
constexpr std::size_t kAliasesFromUcs2 = 2;

template <std::size_t count>
std::uint32_t resolveAlias(std::uint32_t ccsid, const Alias (&aliases)[count], std::size_t used = count) {
  for (std::size_t i = 0; i < used; ++i)
    if (aliases[i].ccsid == ccsid) return aliases[i].resolved;
  return ccsid;
}

/// The function between UCS-2 and UCS-2 in the host's order, null for another CCSID.
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
  const std::uint32_t resolved = resolveAlias(ccsid, kAliases);
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
  const std::uint32_t resolved = resolveAlias(ccsid, kAliases, kAliasesFromUcs2);
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
  // Then another way, or none, is not chosen because ICU does not know the page.
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
