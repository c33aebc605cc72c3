// VelClConverterABase: set-up and release of a converter, and the call of its conversion function. routes.cpp
// chooses that function.
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
  // The route is not ICU, so the data is a table, or null for an algorithm.
  return conversionData_ != nullptr ? VelEnRoute::TABLE : VelEnRoute::ALGORITHM;
}

size_t VelClConverterABase::getSufficientSizeForSize(size_t size) const {
  // Not a virtual function, because a new one would move the slots of the exported vtables.
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
  // Functions that do not check the target's size themselves run only if all of their output fits.
  _VelStConverter call{*this, target, targetSize, source, sourceSize};
  if (vel::codepage::requiredTargetSize(function_, call) > targetSize) {
    lastError_ = vel::codepage::kTooBig;
    return 0;
  }
  return function_(call);
}

// Reads the second byte only if the first one matches, and so never past a terminating NUL.
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
  // Qualified: an override may also consider its second stage, whose ICU converter is not in
  // conversionData_.
  if (VelClConverterABase::requiresExternalICUData()) velDeleteICUConverter(conversionData_);
  conversionData_ = nullptr;
  setConverterError();
}

void VelClConverterABase::setConverterError() {
  function_ = &velConvertError;
}

void VelClConverterABase::setConversionByUsingIconv() {
  // External routines do not exist; all that this route does is look up both names.
  source_.getName();
  target_.getName();
}
