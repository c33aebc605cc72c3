// Dumps whole memory areas to a stream. Lines are formatted by dump_line.h into a buffer on the stack and
// written 64 at a time, so that the cost of a stream operation is shared by many lines.
#include <algorithm>
#include <iostream>

#include "util/dump_line.h"
#include "vel_include/vel_util.h"

namespace {

using vel::util::BinaryForm;
using vel::util::HexForm;
using vel::util::LineLayout;

constexpr std::size_t kLinesAtOnce = 64;

/// Writes the lines of `count` bytes. Stops as soon as the stream fails: formatting the rest of a large area
/// for a full disk would waste time.
template <typename Form>
void dump(std::ostream& stream, const char* data, size_t count) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(data);
  char text[kLinesAtOnce * (LineLayout<Form>::kMaxLength + 1)];
  for (size_t offset = 0; offset < count && stream.good();) {
    char* out = text;
    for (std::size_t line = 0; line < kLinesAtOnce && offset < count; ++line) {
      const size_t size = std::min(count - offset, Form::kBytes);
      out = vel::util::writeLine<Form>(out, offset, bytes + offset, size);
      offset += size;
    }
    stream.write(text, out - text);
  }
}

}  // namespace

void velDump(const char* data, size_t count) {
  velDump(std::cout, data, count);
}

void velDump(std::ostream& stream, const char* data, size_t count) {
  dump<HexForm>(stream, data, count);
}

void velDumpHex(const char* data, size_t count) {
  velDump(std::cout, data, count);
}

void velDumpHex(std::ostream& stream, const char* data, size_t count) {
  velDump(stream, data, count);
}

void velDumpBin(const char* data, size_t count) {
  velDumpBin(std::cout, data, count);
}

void velDumpBin(std::ostream& stream, const char* data, size_t count) {
  dump<BinaryForm>(stream, data, count);
}
