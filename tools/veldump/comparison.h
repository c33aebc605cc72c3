// Compares the bytes of two files and shows the lines that differ, "<" before a line of the first file and
// ">" before one of the second.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "tools/output_buffer.h"
#include "tools/veldump/byte_source.h"
#include "tools/veldump/line_painter.h"

namespace vel::veldump {

using tools::OutputBuffer;

/// `Form` is util::HexForm or util::BinaryForm.
template <typename Form>
class Comparison {
 public:
  /// All arguments must outlive this object.
  Comparison(OutputBuffer& output, const LinePainter& painter) : output_(output), painter_(painter) {}

  /// Compares up to the end of the longer file; the first bytes have these addresses. Returns whether all
  /// bytes are equal, as far as both files could be read. `step(count)` is called after `count` more bytes.
  template <typename Step>
  bool run(ByteSource& first, std::uint64_t firstOffset, ByteSource& second, std::uint64_t secondOffset,
           Step step) {
    bool areEqual = true;
    while (true) {
      const std::size_t firstSize = fill(first, first_);
      const std::size_t secondSize = fill(second, second_);
      const std::size_t size = std::max(firstSize, secondSize);
      if (size == 0 || first.hasFailed() || second.hasFailed()) return areEqual;
      if (firstSize != secondSize || std::memcmp(first_.data(), second_.data(), size) != 0) {
        areEqual = false;
        showLines({first_.data(), firstSize, firstOffset}, {second_.data(), secondSize, secondOffset}, size);
      }
      firstOffset += firstSize;
      secondOffset += secondSize;
      step(size);
    }
  }

 private:
  static constexpr std::size_t kChunk = std::size_t{64} * 1024;
  static_assert(kChunk % Form::kBytes == 0);

  struct Bytes {
    const std::uint8_t* data;
    std::size_t size;
    std::uint64_t offset;

    /// Returns the line at a position; it is shorter, or empty, at the end.
    Bytes lineAt(std::size_t position) const {
      const std::size_t start = std::min(position, size);
      return {data + start, std::min(size - start, Form::kBytes), offset + start};
    }
  };

  /// Reads until the chunk is full or the bytes end, so that the lines of both files stay in step.
  static std::size_t fill(ByteSource& source, std::vector<std::uint8_t>& chunk) {
    std::size_t size = 0;
    while (size < chunk.size()) {
      const std::size_t count = source.read(chunk.data() + size, chunk.size() - size);
      if (count == 0) break;
      size += count;
    }
    return size;
  }

  void showLines(const Bytes& first, const Bytes& second, std::size_t size) {
    for (std::size_t position = 0; position < size; position += Form::kBytes) {
      const Bytes a = first.lineAt(position), b = second.lineAt(position);
      const std::uint32_t differing = differences(a, b);
      if (differing == 0) continue;
      show('<', a, differing);
      show('>', b, differing);
    }
  }

  /// Returns a bit for each byte of the line that differs or that only one file has.
  static std::uint32_t differences(const Bytes& a, const Bytes& b) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < std::max(a.size, b.size); ++i)
      if (i >= a.size || i >= b.size || a.data[i] != b.data[i]) bits |= 1U << i;
    return bits;
  }

  void show(char mark, const Bytes& line, std::uint32_t differing) {
    if (line.size == 0) return;
    char* out = output_.reserve(LinePainter::maxLineSize<Form>() + 2);
    *out++ = mark;
    *out++ = ' ';
    output_.commit(painter_.writeLine<Form>(out, line.offset, line.data, line.size, differing));
  }

  OutputBuffer& output_;
  const LinePainter& painter_;
  std::vector<std::uint8_t> first_ = std::vector<std::uint8_t>(kChunk);
  std::vector<std::uint8_t> second_ = std::vector<std::uint8_t>(kChunk);
};

}  // namespace vel::veldump
