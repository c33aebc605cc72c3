// Reads the record of a trace entry back from a file.
#include <cstring>
#include <istream>

#include "trace/text_compression.h"
#include "vel_include/vel_trace.h"

namespace {

// Two more than the record has; nothing relies on it. Keep.
constexpr std::uint64_t kReadHeadLength = 22;

/// Reads past the stream's formatting layer, which would cost more than the read itself. What is missing at
/// the end of the file is filled with 0.
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
  static_assert(sizeof message_ > vel::trace::kLongestPlain + vel::trace::kSlack);
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
