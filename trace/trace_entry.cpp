// Builds the record of a trace entry.
#include <bit>
#include <cstdint>
#include <cstring>

#include "trace/text_compression.h"
#include "vel_include/vel_process.h"
#include "vel_include/vel_trace.h"

namespace {

constexpr std::size_t kOffsetComponent = 1;
constexpr std::size_t kOffsetMessageLength = 2;
constexpr std::size_t kOffsetOriginLength = 3;
constexpr unsigned int kTypeAndCompressed = 0x3F;
constexpr unsigned int kDetailBits = 0xC0;

void storeNumber(unsigned char* out, std::uint32_t number) {
  static_assert(std::endian::native == std::endian::little);
  std::memcpy(out, &number, sizeof number);
}

/// The length of a text, at most `limit`; nothing behind its terminator is read.
std::size_t boundedLength(const char* text, std::size_t limit) {
  const void* end = std::memchr(text, '\0', limit);
  return end == nullptr ? limit : static_cast<std::size_t>(static_cast<const char*>(end) - text);
}

unsigned char store(const char* text, bool compressed, unsigned char* out) {
  if (text == nullptr) return 0;
  if (compressed)
    return static_cast<unsigned char>(
        vel::trace::compress(text, boundedLength(text, vel::trace::kLongestPlain), out));
  const std::size_t length = boundedLength(text, vel::trace::kLongestCompressed);
  std::memcpy(out, text, length);
  return static_cast<unsigned char>(length);
}

}  // namespace

VelClTraceEntry::VelClTraceEntry(const VelClTraceEnvironment& environment)
    : environment_(&environment), record_{}, entrySize_(0), dumpData_(nullptr) {}

// The texts' part of the record is filled as far as it is used.
VelClTraceEntry::VelClTraceEntry(const VelClTraceEnvironment& environment, VelEnTraceDetail detail,
                                 unsigned short componentId, VelEnTraceDataType type, const char* origin,
                                 const char* message, const void* data, size_t size)
    : environment_(&environment), dumpData_(data) {
  if (data == nullptr) {
    size = 0;
    type = VelEnTraceDataType::DATA_NULL;
  } else if (size > environment.getBufferSize()) {
    size = static_cast<std::size_t>(environment.getBufferSize());
    type = VelEnTraceDataType::DATA_CLIPPED;
  }
  record_[0] = static_cast<unsigned char>((static_cast<unsigned int>(type) & kTypeAndCompressed) |
                                          static_cast<unsigned int>(detail) << 6);
  record_[kOffsetComponent] = static_cast<unsigned char>(componentId);
  storeNumber(record_ + 4, static_cast<std::uint32_t>(environment.getTimeStamp()));
  storeNumber(record_ + 8, environment.getProcessId());
  storeNumber(record_ + 12, VelClThreadProperty().getThreadId());
  storeNumber(record_ + 16, static_cast<std::uint32_t>(size));
  storeTexts(message, origin);
}

VelClTraceEntry::~VelClTraceEntry() = default;

void VelClTraceEntry::storeTexts(const char* message, const char* origin) {
  static_assert(sizeof record_ >= kHeadLength + 2 * kLongestText + vel::trace::kSlack);
  const bool compressed = environment_->getSettings().usesCompression();
  if (compressed) setCompressFlag();
  unsigned char* const texts = record_ + kHeadLength;
  const std::size_t messageLength = record_[kOffsetMessageLength] = store(message, compressed, texts);
  const std::size_t originLength = record_[kOffsetOriginLength] =
      store(origin, compressed, texts + messageLength);
  entrySize_ = kHeadLength + messageLength + originLength;
}

void VelClTraceEntry::setType(VelEnTraceDataType type) {
  record_[0] = static_cast<unsigned char>((record_[0] & kDetailBits) |
                                          (static_cast<unsigned int>(type) & kTypeAndCompressed));
}

void VelClTraceEntry::setDetail(VelEnTraceDetail detail) {
  record_[0] =
      static_cast<unsigned char>((record_[0] & kTypeAndCompressed) | static_cast<unsigned int>(detail) << 6);
}
