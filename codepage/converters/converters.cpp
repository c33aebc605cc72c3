// The converters from a code page to UCS-2, from UCS-2 to a code page, and through UCS-2 from one code page
// to another. The conversion functions do the work; routes.cpp chooses them.
//
// VelClCodePage2CodePageConverter is itself the first stage, from the source to UCS-2, through its base class
// VelClCodePage2UnicodeConverter; secondStage_ converts from UCS-2 to the target.
#include <algorithm>

#include "codepage/conversion.h"
#include "vel_include/vel_memmgr.h"

namespace {

using vel::codepage::kUnitSize;

/// Extra bytes in each allocation of the intermediate buffer: the byte that growBuffer() requires, and 32 KiB
/// so that somewhat longer texts need no other allocation.
constexpr std::size_t kSpare = 32769;

/// Returns the most UCS-2 bytes that `size` source bytes can become: a code page never yields more units than
/// it has bytes.
std::size_t sizeInUcs2(const VelClCCSID& source, std::size_t size) {
  return source.isUCS2() ? size : kUnitSize * size;
}

/// GB18030 has characters of up to four bytes and two units, which VelClCCSID::isDBCS does not reflect.
bool isGb18030(const VelClCCSID& ccsid) {
  return ccsid.getCCSID() == VelClCCSID::CCSID_1392;
}

}  // namespace

VelClCodePage2UnicodeConverter::VelClCodePage2UnicodeConverter(const VelClCCSID& source)
    : VelClConverterABase(source, VelClCCSID::CCSID_UCS2) {
  initCodePage2Unicode();
}

VelClCodePage2UnicodeConverter::~VelClCodePage2UnicodeConverter() = default;

size_t VelClCodePage2UnicodeConverter::getMaximumSizeForLength(size_t length) const {
  return isGb18030(getSourceCCSID()) ? 4 * length : kUnitSize * length;
}

size_t VelClCodePage2UnicodeConverter::getMaximumSizeForSize(size_t size) const {
  return sizeInUcs2(getSourceCCSID(), size);
}

VelClUnicode2CodePageConverter::VelClUnicode2CodePageConverter(const VelClCCSID& target)
    : VelClConverterABase(VelClCCSID::CCSID_UCS2, target) {
  initUnicode2CodePage();
}

VelClUnicode2CodePageConverter::~VelClUnicode2CodePageConverter() = default;

size_t VelClUnicode2CodePageConverter::getMaximumSizeForLength(size_t length) const {
  const VelClCCSID& target = VelClConverterABase::getTargetCCSID();
  // Intentional: callers get five bytes for a character of UTF-8, although none needs more than four.
  if (target.getCCSID() == VelClCCSID::CCSID_UTF8) return 5 * length;
  // Intentional: callers get two bytes for a character even if the target is a single-byte page.
  return isGb18030(target) ? 4 * length : 2 * length;
}

size_t VelClUnicode2CodePageConverter::getMaximumSizeForSize(size_t size) const {
  const VelClCCSID& target = VelClConverterABase::getTargetCCSID();
  const std::size_t units = size / kUnitSize;
  if (target.getCCSID() == VelClCCSID::CCSID_UTF8) return units * 3;
  if (isGb18030(target) || target.isUCS2()) return size;
  return target.isDBCS() ? units * kUnitSize : units;
}

VelClCodePage2CodePageConverter::VelClCodePage2CodePageConverter(const VelClCCSID& source,
                                                                 const VelClCCSID& target)
    : VelClCodePage2UnicodeConverter(source), secondStage_(target), buffer_(nullptr), bufferSize_(0) {
  const _VelStError& second = secondStage_.getLastError();
  // Only running out of memory is reported at construction: another route may have been chosen for lack of
  // memory. Every other error of the second stage is reported by the conversion.
  if (second.errorClass == VelEnErrorClass::OUT_OF_MEMORY) lastError_ = second;
}

VelClCodePage2CodePageConverter::~VelClCodePage2CodePageConverter() {
  VelClMemoryManager::free(buffer_);
}

const VelClCCSID& VelClCodePage2CodePageConverter::getTargetCCSID() const {
  return secondStage_.getTargetCCSID();
}

bool VelClCodePage2CodePageConverter::isSupported() const {
  return VelClConverterABase::isSupported() && secondStage_.isSupported();
}

bool VelClCodePage2CodePageConverter::requiresExternalICONVRoutine() const {
  return VelClConverterABase::requiresExternalICONVRoutine() || secondStage_.requiresExternalICONVRoutine();
}

bool VelClCodePage2CodePageConverter::requiresExternalICUData() const {
  return VelClConverterABase::requiresExternalICUData() || secondStage_.requiresExternalICUData();
}

size_t VelClCodePage2CodePageConverter::getMaximumSizeForLength(size_t length) const {
  return secondStage_.getMaximumSizeForLength(length);
}

size_t VelClCodePage2CodePageConverter::getMaximumSizeForSize(size_t size) const {
  if (getSourceCCSID() == getTargetCCSID()) return size;
  const std::size_t inUcs2 = sizeInUcs2(getSourceCCSID(), size);
  // Intentional: for GB18030 callers get the size of the intermediate buffer, which UTF-8 can exceed.
  if (isGb18030(getSourceCCSID())) return inUcs2;
  const std::size_t inTarget = secondStage_.getMaximumSizeForSize(inUcs2);
  if (getSourceCCSID().isUCS2()) return inTarget;
  // A source byte is at most one character, so the size for `size` characters is a second limit.
  return std::min(inTarget, secondStage_.getMaximumSizeForLength(size));
}

// Follows the branches of convertBytes: one stage is enough where a side is already UCS-2 in host order.
size_t VelClCodePage2CodePageConverter::sufficientSize(size_t size) const {
  if (getSourceCCSID() == getTargetCCSID()) return size;
  if (getSourceCCSID().isUCS2HostEndian()) return secondStage_.getSufficientSizeForSize(size);
  const std::size_t inUcs2 = sufficientSizeOfStage(size);
  return getTargetCCSID().isUCS2HostEndian() ? inUcs2 : secondStage_.getSufficientSizeForSize(inUcs2);
}

size_t VelClCodePage2CodePageConverter::convertBytes(char* target, size_t targetSize, const char** source,
                                                     size_t sourceSize) const {
  if (getSourceCCSID() == getTargetCCSID()) return copyBytes(target, targetSize, source, sourceSize);
  if (getSourceCCSID().isUCS2HostEndian()) {
    const std::size_t written = secondStage_.convertBytes(target, targetSize, source, sourceSize);
    lastError_ = secondStage_.getLastError();
    return written;
  }
  if (getTargetCCSID().isUCS2HostEndian()) return runConversion(target, targetSize, source, sourceSize);
  return convertInTwoStages(target, targetSize, source, sourceSize);
}

// Copies without validating: an incomplete last character is not reported.
size_t VelClCodePage2CodePageConverter::copyBytes(char* target, size_t targetSize, const char** source,
                                                  size_t sourceSize) const {
  lastError_.reset();
  const std::size_t size = std::min(targetSize, sourceSize);
  if (size != 0) std::memcpy(target, *source, size);
  *source += size;
  return size;
}

size_t VelClCodePage2CodePageConverter::convertInTwoStages(char* target, size_t targetSize,
                                                           const char** source, size_t sourceSize) const {
  growBuffer(sizeInUcs2(getSourceCCSID(), sourceSize));
  const std::size_t size = runConversion(buffer_, bufferSize_, source, sourceSize);
  if (lastError_.errorId != VEL_NO_ERROR && lastError_.errorId != CPCONVERTER_INCOMPLETE) return 0;
  const std::size_t written =
      secondStage_.convertBytes(target, targetSize, static_cast<const char*>(buffer_), size);
  // Intentional: callers get the error of the second stage. An incomplete source shows only in the source
  // pointer, which is then not at the end.
  lastError_ = secondStage_.getLastError();
  return written;
}

void VelClCodePage2CodePageConverter::growBuffer(size_t size) const {
  // Intentional: one byte more than the conversion needs is required, and kSpare is added to the need; an
  // allocator that the program installs sees these sizes.
  if (size + 1 <= bufferSize_) return;
  // The old contents are not needed. The fields are cleared before the allocation, which may throw.
  VelClMemoryManager::free(buffer_);
  buffer_ = nullptr;
  bufferSize_ = 0;
  buffer_ = static_cast<char*>(VelClMemoryManager::malloc(size + kSpare));
  bufferSize_ = size + kSpare;
}

VelClCodePage2UTF8Converter::VelClCodePage2UTF8Converter(const VelClCCSID& source)
    : VelClCodePage2CodePageConverter(source, VelClCCSID::CCSID_UTF8) {}

VelClCodePage2UTF8Converter::~VelClCodePage2UTF8Converter() = default;
