// Reads the bytes of one file or of standard input within a range. A file is positioned at the offset; a pipe
// has to be read up to there. Opening a named pipe waits for a program that writes to it.
#include "tools/veldump/byte_source.h"

#include <algorithm>

#include "platform/byte_files.h"

namespace vel::veldump {

ByteSource::ByteSource(const char* name) {
  if (name == nullptr) return;
  file_.open(name, platform::PipeWithoutWriter::Wait);
  descriptor_ = file_.descriptor();
}

bool ByteSource::narrow(const Range& range) {
  std::uint64_t toSkip = range.offset;
  // Skipping stops at the end of a file, so the number of bytes is asked for before.
  const std::uint64_t known = platform::bytesLeft(descriptor_);
  if (toSkip > 0 && platform::skipBytes(descriptor_, toSkip)) toSkip -= std::min(toSkip, known);
  // The rest cannot be skipped and is read: all of it in a pipe, and in a file to notice that it ends too
  // early.
  char dropped[4096];
  while (toSkip > 0) {
    const std::size_t count =
        read(dropped, static_cast<std::size_t>(std::min<std::uint64_t>(toSkip, sizeof dropped)));
    if (count == 0) return false;
    toSkip -= count;
  }
  left_ = range.length;
  return true;
}

std::uint64_t ByteSource::expectedBytes() const {
  return std::min(left_, platform::bytesLeft(descriptor_));
}

std::size_t ByteSource::read(void* buffer, std::size_t capacity) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left_, capacity));
  if (wanted == 0 || failed_) return 0;
  std::size_t size = 0;
  failed_ = platform::readBytes(descriptor_, buffer, wanted, size) != 0;
  if (failed_) return 0;
  left_ -= size;
  return size;
}

}  // namespace vel::veldump
