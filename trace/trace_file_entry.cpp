// Reads the record of an entry from a trace file and decodes its texts. The data after the record is the
// caller's to read or skip.
#include <cstring>
#include <istream>

#include "trace/text_compression.h"
#include "vel_include/vel_trace.h"

namespace {

// Intentional: callers of getSizeOfEntryData() get the size of an entry from a file as 2 more than its
// record. Nothing in the library computes with it.
constexpr std::uint64_t kReadHeadLength = 22;

/// Reads from the stream's buffer, since istream::read would spend more time on the stream's state than on
/// the bytes. At the end of the file sets missing bytes to 0 and the stream's state as istream::read does.
bool readBytes(std::istream& stream, void* out, std::size_t length) {
  const auto wanted = static_cast<std::streamsize>(length);
  const std::streamsize count = stream.rdbuf()->sgetn(static_cast<char*>(out), wanted);
  if (count == wanted) return true;
  std::memset(static_cast<char*>(out) + count, 0, static_cast<std::size_t>(wanted - count));
  stream.setstate(std::ios::eofbit | std::ios::failbit);
  return false;
}

}  // namespace

VelClTraceFileEntry::VelClTraceFileEntry(const VelClTraceEnvironment& environment)
    : VelClTraceEntry(environment), origin_{}, originLength_(0), message_{}, messageLength_(0) {}

VelClTraceFileEntry::~VelClTraceFileEntry() = default;

bool VelClTraceFileEntry::read(std::istream& stream) {
  // An incomplete head leaves no valid lengths, so the whole record becomes 0.
  if (!stream.good() || !readBytes(stream, record_, kHeadLength)) {
    std::memset(record_, 0, sizeof record_);
    return false;
  }
  const std::size_t textLength = getCompressedMessageLength() + getCompressedOriginLength();
  entrySize_ = textLength + kReadHeadLength;
  const bool complete = readBytes(stream, record_ + kHeadLength, textLength);
  messageLength_ = decode(getCompressedMessage(), getCompressedMessageLength(), message_);
  originLength_ = decode(getCompressedOrigin(), getCompressedOriginLength(), origin_);
  return complete;
}

unsigned int VelClTraceFileEntry::decode(const char* stored, unsigned int length, char* text) const {
  // Any bytes may be in the file; their number, at most 255, is what keeps the result within the buffer.
  static_assert(sizeof message_ > vel::trace::kMaxPlainSize + vel::trace::kSlack);
  if (!isCompressed()) {
    std::memcpy(text, stored, length);
    text[length] = '\0';
    return length;
  }
  const std::size_t plain =
      vel::trace::decompress(reinterpret_cast<const unsigned char*>(stored), length, text);
  environment_->recordCompressionRate(plain, length);
  return static_cast<unsigned int>(plain);
}
