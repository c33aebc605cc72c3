// Reads the bytes of one file or of standard input within a range. A file is positioned at the offset; a pipe
// has to be read up to there. Opening a named pipe waits for a program that writes to it.
#include "tools/veldump/byte_source.h"

#include <algorithm>
#include <cstring>

#include "platform/byte_files.h"

namespace vel::veldump {

ByteSource::ByteSource(const char* name) {
  if (name == nullptr) return;
  file_.open(name, platform::PipeWithoutWriter::Wait);
  descriptor_ = file_.descriptor();
}

bool ByteSource::narrow(Range& range) {
  if (range.isFromEnd) keepTail(range);
  std::uint64_t toSkip = hasTail_ ? 0 : range.offset;
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

/// Finds where the range begins. The size of a pipe is known only after it was read, so its last bytes are
/// kept.
void ByteSource::keepTail(Range& range) {
  const std::uint64_t wanted = range.offset;
  std::uint64_t size = platform::bytesLeft(descriptor_);
  if (size == 0) {
    constexpr std::size_t kChunk = std::size_t{64} * 1024;
    std::vector<char> tail;
    std::size_t count = 0;
    do {
      const std::size_t before = tail.size();
      tail.resize(before + kChunk);
      count = read(tail.data() + before, kChunk);
      tail.resize(before + count);
      size += count;
      // Dropped rarely, because the bytes that stay are moved.
      if (tail.size() / 2 > std::max<std::uint64_t>(wanted, kChunk))
        tail.erase(tail.begin(), tail.end() - static_cast<std::ptrdiff_t>(wanted));
    } while (count > 0);
    const std::size_t kept = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, tail.size()));
    tail_.assign(tail.end() - static_cast<std::ptrdiff_t>(kept), tail.end());
    hasTail_ = true;
  }
  range.offset = size - std::min(size, wanted);
  range.isFromEnd = false;
}

std::uint64_t ByteSource::expectedBytes() const {
  return std::min(left_, platform::bytesLeft(descriptor_));
}

std::size_t ByteSource::read(void* buffer, std::size_t capacity) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left_, capacity));
  if (wanted == 0 || failed_) return 0;
  if (hasTail_) return readKept(buffer, wanted);
  std::size_t size = 0;
  failed_ = platform::readBytes(descriptor_, buffer, wanted, size) != 0;
  if (failed_) return 0;
  left_ -= size;
  return size;
}

std::size_t ByteSource::readKept(void* buffer, std::size_t wanted) {
  const std::size_t size = std::min(wanted, tail_.size() - tailDone_);
  if (size != 0) std::memcpy(buffer, tail_.data() + tailDone_, size);
  tailDone_ += size;
  left_ -= size;
  return size;
}

}  // namespace vel::veldump
