// The base of the converters: set-up, release, and the call of the conversion function.
#include "codepage/conversion.h"
#include "codepage/converters/target_sizes.h"

VelClConverterABase::VelClConverterABase(const VelClCCSID& source, const VelClCCSID& target)
    : source_(source),
      target_(target),
      externalRoutine_(nullptr),
      conversionData_(nullptr),
      function_(&velConvertError) {}

VelClConverterABase::~VelClConverterABase() {
  deinit();
}

const VelClCCSID& VelClConverterABase::getTargetCCSID() const {
  return target_;
}

bool VelClConverterABase::isSupported() const {
  return function_ != &velConvertError;
}

bool VelClConverterABase::requiresExternalICONVRoutine() const {
  return function_ == &velConvertError;
}

bool VelClConverterABase::requiresExternalICUData() const {
  return function_ == &velConvertByAlgorithmIcuToUnicode || function_ == &velConvertByAlgorithmIcuFromUnicode;
}

VelClConverterABase::VelEnRoute VelClConverterABase::getRoute() const {
  if (function_ == &velConvertError) return VelEnRoute::NONE;
  if (VelClConverterABase::requiresExternalICUData()) return VelEnRoute::ICU;
  if (function_ == &velConvertByWindowsCallUCS2ToWinCP) return VelEnRoute::SYSTEM;
  // Only tables and ICU's converters are data.
  return conversionData_ != nullptr ? VelEnRoute::TABLE : VelEnRoute::ALGORITHM;
}

size_t VelClConverterABase::getSufficientSizeForSize(size_t size) const {
  const auto* const stages = dynamic_cast<const VelClCodePage2CodePageConverter*>(this);
  return stages != nullptr ? stages->sufficientSize(size) : sufficientSizeOfStage(size);
}

size_t VelClConverterABase::sufficientSizeOfStage(size_t size) const {
  const char* source = nullptr;
  return vel::codepage::sufficientTargetSize(function_, {*this, nullptr, 0, &source, size});
}

size_t VelClConverterABase::convertBytes(char* target, size_t targetSize, const char** source,
                                         size_t sourceSize) const {
  return runConversion(target, targetSize, source, sourceSize);
}

size_t VelClConverterABase::convertBytes(char* target, size_t targetSize, const char* source,
                                         size_t sourceSize) const {
  return convertBytes(target, targetSize, &source, sourceSize);
}

size_t VelClConverterABase::runConversion(char* target, size_t targetSize, const char** source,
                                          size_t sourceSize) const {
  lastError_.reset();
  _VelStConverter call{*this, target, targetSize, source, sourceSize};
  if (vel::codepage::requiredTargetSize(function_, call) > targetSize) {
    lastError_ = vel::codepage::kTooBig;
    return 0;
  }
  return function_(call);
}

bool VelClConverterABase::isUCS2BigEndianId(const char* text) {
  return text[0] == '\xFE' && text[1] == '\xFF';
}

bool VelClConverterABase::isUCS2LittleEndianId(const char* text) {
  return text[0] == '\xFF' && text[1] == '\xFE';
}

void VelClConverterABase::initNewCodePage2Unicode(const VelClCCSID& source) {
  deinit();
  source_ = source;
  initCodePage2Unicode();
}

void VelClConverterABase::deinit() {
  // The answer of this class counts: a derived one may look at other converters, too.
  if (VelClConverterABase::requiresExternalICUData()) velDeleteICUConverter(conversionData_);
  conversionData_ = nullptr;
  setConverterError();
}

void VelClConverterABase::setConverterError() {
  function_ = &velConvertError;
}

void VelClConverterABase::setConversionByUsingIconv() {
  // There is no external routine; only the names are asked for.
  source_.getName();
  target_.getName();
}
