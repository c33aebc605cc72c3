// Reads a trace file through a large buffer. The callers know what its bytes mean.
#include "trace/trace_file_input.h"

#include "platform/byte_files.h"
#include "platform/files.h"

namespace vel::trace {

TraceFileInput::~TraceFileInput() = default;

bool isDirectory(const char* name) {
  const std::uint32_t attributes = platform::attributesOf(name);
  return attributes != platform::kAttributesUnreadable && (attributes & platform::kAttributeDirectory) != 0;
}

bool TraceFileInput::open(const char* name) {
  buffer_.reset(static_cast<char*>(VelClMemoryManager::malloc(kCapacity)));
  return !isDirectory(name) && file_.open(name, platform::PipeWithoutWriter::Refuse) == 0;
}

// Skips by reading: most data is short and in the buffer already, and a pipe cannot seek.
bool TraceFileInput::skip(std::uint64_t count) {
  while (count > 0) {
    if (gptr() == egptr() && underflow() == traits_type::eof()) return false;
    const auto step = std::min(count, static_cast<std::uint64_t>(egptr() - gptr()));
    gbump(static_cast<int>(step));
    count -= step;
  }
  return true;
}

TraceFileInput::int_type TraceFileInput::underflow() {
  // A failure to read looks like the end of the file here; the formatter asks hasFailed() afterwards.
  std::size_t size = 0;
  if (!failed_ && platform::readBytes(file_.descriptor(), buffer_.get(), kCapacity, size) != 0)
    failed_ = true;
  if (failed_) size = 0;
  char* const start = buffer_.get();
  setg(start, start, start + size);
  return size > 0 ? traits_type::to_int_type(*start) : traits_type::eof();
}

}  // namespace vel::trace
