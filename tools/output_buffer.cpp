// Collects output. Lines are formatted directly in the buffer, between reserve and commit, so that no line is
// copied; a stream would copy each one. The destructor does not flush, because it could not report a failure.
#include "tools/output_buffer.h"

#include <algorithm>
#include <cstring>

namespace vel::tools {

OutputBuffer::OutputBuffer(Sink sink) : sink_(sink), buffer_(std::make_unique<char[]>(kCapacity)) {}

char* OutputBuffer::reserve(std::size_t size) {
  if (kCapacity - used_ < size) flush();
  return buffer_.get() + used_;
}

void OutputBuffer::append(const char* text, std::size_t size) {
  while (size > 0) {
    const std::size_t part = std::min(size, kCapacity);
    char* const out = reserve(part);
    std::memcpy(out, text, part);
    commit(out + part);
    text += part;
    size -= part;
  }
}

void OutputBuffer::flush() {
  // Emptied first, so that bytes that could not be written are not written again later.
  const std::size_t size = used_;
  used_ = 0;
  if (!sink_(buffer_.get(), size)) throw OutputFailure();
}

}  // namespace vel::tools
