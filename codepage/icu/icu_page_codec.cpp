// Translates between strict conversion, which counts units and throws when memory runs out, and icu_calls,
// which counts bytes and returns statuses.
#include "codepage/icu/icu_page_codec.h"

#include "codepage/conversion.h"
#include "codepage/icu/icu_calls.h"

namespace vel::codepage {

namespace {

void requireMemory(const IcuBuffers& buffers) {
  if (buffers.status == kIcuOutOfMemory) throwIcuOutOfMemory();
}

}  // namespace

void throwIcuOutOfMemory() {
  // Names the class that callers use, not this function: they see it as the exception's origin.
  constexpr const char* kOrigin = "VelClStrictConversion, ICU";
  VelClExceptionFatal exception(ICU_MEMORY_ALLOCATION_ERROR, VelEnErrorClass::OUT_OF_MEMORY,
                                VelEnErrorAction::TERMINATE, "");
  exception.setOrigin(kOrigin, 0);
  throw exception;
}

IcuPageCodec::IcuPageCodec(const VelClConverterABase& converter) : converter_(conversionDataOf(converter)) {}

IcuPageCodec::DecodedPiece IcuPageCodec::decodePiece(const char* bytes, std::size_t size, char16_t* units,
                                                     std::size_t capacity, bool flush) const {
  IcuBuffers buffers{reinterpret_cast<char*>(units), capacity * kUnitSize, bytes, size, 0};
  const std::size_t written = continueToUnicode(*installedIcu(), converter_, buffers, flush);
  requireMemory(buffers);
  return {written / kUnitSize, buffers.status <= kIcuSuccess};
}

IcuPageCodec::EncodedPiece IcuPageCodec::encodePiece(const char16_t*& units, const char16_t* unitsEnd,
                                                     char* bytes, std::size_t capacity, bool flush) const {
  const auto size = static_cast<std::size_t>(unitsEnd - units) * kUnitSize;
  IcuBuffers buffers{bytes, capacity, reinterpret_cast<const char*>(units), size, 0};
  const std::size_t written = continueFromUnicode(*installedIcu(), converter_, buffers, flush);
  requireMemory(buffers);
  units = reinterpret_cast<const char16_t*>(buffers.source);
  return {written, buffers.status == kIcuBufferOverflow};
}

std::size_t IcuPageCodec::decode(const char* bytes, std::size_t size, char16_t* units,
                                 std::size_t capacity) const {
  IcuBuffers buffers{reinterpret_cast<char*>(units), capacity * kUnitSize, bytes, size, 0};
  const std::size_t written = convertToUnicode(*installedIcu(), converter_, buffers);
  requireMemory(buffers);
  return written / kUnitSize;
}

std::size_t IcuPageCodec::encode(const char16_t* units, std::size_t count, char* bytes,
                                 std::size_t capacity) const {
  IcuBuffers buffers{bytes, capacity, reinterpret_cast<const char*>(units), count * kUnitSize, 0};
  const std::size_t written = convertFromUnicode(*installedIcu(), converter_, buffers);
  requireMemory(buffers);
  return written;
}

}  // namespace vel::codepage
