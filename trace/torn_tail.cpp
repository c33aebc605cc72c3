// Finds out whether a trace file ends within a record. The only way is from its start, record by record.
#include "trace/torn_tail.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/byte_files.h"
#include "platform/files.h"
#include "trace/record.h"

namespace vel::trace {

namespace {

constexpr std::uint64_t kMaxExamined = std::uint64_t{1} << 30;
/// Longer data is not in a trace: a ring has at most 16 MiB.
constexpr std::uint32_t kMaxDataLength = 0x1000000;
constexpr unsigned int kLastType = 21;

/// Goes through a file without an allocation: the program's allocator may trace, too.
class Walk {
 public:
  explicit Walk(int descriptor) : descriptor_(descriptor) {}

  /// Both return false at the end of the file.
  bool read(unsigned char* out, std::size_t size) {
    while (size > 0) {
      const std::size_t part = std::min(size, available());
      if (part == 0) return false;
      std::memcpy(out, block_ + place_, part);
      place_ += part;
      out += part;
      size -= part;
    }
    return true;
  }
  bool skip(std::size_t size) {
    while (size > 0) {
      const std::size_t part = std::min(size, available());
      if (part == 0) return false;
      place_ += part;
      size -= part;
    }
    return true;
  }
  bool isAtEnd() { return available() == 0; }

 private:
  std::size_t available() {
    if (place_ == end_) {
      place_ = end_ = 0;
      if (platform::readBytes(descriptor_, block_, sizeof block_, end_) != 0) end_ = 0;
    }
    return end_ - place_;
  }

  int descriptor_;
  std::size_t place_ = 0;
  std::size_t end_ = 0;
  unsigned char block_[16 * 1024];
};

}  // namespace

bool endsWithinRecord(const char* name) noexcept {
  platform::EntryStatus status{};
  if (platform::statusOf(name, status) != 0 || status.sizeInBytes == 0 || status.sizeInBytes > kMaxExamined)
    return false;
  platform::ReadableFile file;
  if (file.open(name, platform::PipeWithoutWriter::Refuse) != 0 ||
      platform::bytesLeft(file.descriptor()) == 0)
    return false;
  Walk walk(file.descriptor());
  for (bool isFirst = true; !walk.isAtEnd(); isFirst = false) {
    unsigned char head[kHeadLength];
    if (!walk.read(head, sizeof head)) return !isFirst;
    const unsigned int type = head[0] & 0x1FU;
    std::uint32_t dataLength = 0;
    std::memcpy(&dataLength, head + 16, sizeof dataLength);
    if (type == 0 || type > kLastType || dataLength > kMaxDataLength)
      return false;  // damaged, or not a trace
    if (!walk.skip(std::size_t{head[2]} + head[3] + dataLength)) return !isFirst;
  }
  return false;
}

}  // namespace vel::trace
