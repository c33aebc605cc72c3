// Writes a file beside the one that it replaces, so that at any time either the old or the new file is in
// place. How a system does that is the platform's work; here it becomes a stream, because VelClIniFileSave
// writes models to streams of any kind.
#include "inifile/file_output.h"

#include "platform/byte_files.h"
#include "platform/replacing.h"

namespace vel::inifile {

namespace {

/// One system call per buffer.
constexpr std::size_t kBufferSize = std::size_t{64} * 1024;

}  // namespace

ReplacementBuffer::~ReplacementBuffer() {
  close(false);
}

bool ReplacementBuffer::open(const char* name) {
  buffer_.resize(kBufferSize);
  if (platform::startReplacement(name, replacement_) != 0) return false;
  setp(buffer_.data(), buffer_.data() + buffer_.size());
  return true;
}

bool ReplacementBuffer::close(bool isComplete) {
  if (!isOpen()) return false;
  // Without a buffer area later writes call overflow, which fails because no file is open.
  setp(nullptr, nullptr);
  if (isComplete) return platform::finishReplacement(replacement_) == 0;
  platform::dropReplacement(replacement_);
  return false;
}

ReplacementBuffer::int_type ReplacementBuffer::overflow(int_type c) {
  if (sync() != 0) return traits_type::eof();
  return sputc(traits_type::to_char_type(c));
}

int ReplacementBuffer::sync() {
  if (!isOpen()) return -1;
  const auto size = static_cast<std::size_t>(pptr() - pbase());
  if (platform::writeBytes(replacement_.descriptor, pbase(), size) != 0) return -1;
  setp(buffer_.data(), buffer_.data() + buffer_.size());
  return 0;
}

bool FileOutput::open(const char* name) {
  // A failed save leaves the stream in an error state, and a new one must be possible.
  clear();
  return buffer_.open(name);
}

}  // namespace vel::inifile
