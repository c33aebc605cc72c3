// Files that are written beside the ones they replace.
#include "inifile/file_output.h"

#include "platform/byte_files.h"
#include "platform/replacing.h"

namespace vel::inifile {

namespace {

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
  clear();
  return buffer_.open(name);
}

}  // namespace vel::inifile
