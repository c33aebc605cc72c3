// Formats bytes as the lines of a dump, many at once, and writes "*" for lines that repeat.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "tools/output_buffer.h"
#include "tools/veldump/line_painter.h"
#include "util/dump_line.h"

namespace vel::veldump {

using tools::OutputBuffer;

/// `Form` is util::HexForm or util::BinaryForm.
template <typename Form>
class DumpWriter {
 public:
  /// The first byte has the address `offset`. The painter must outlive this object.
  DumpWriter(OutputBuffer& output, const LinePainter& painter, std::uint64_t offset, bool squeeze)
      : output_(output), painter_(painter), offset_(offset), squeeze_(squeeze) {}

  /// Writes all whole lines and returns the number of bytes in them. The caller keeps the rest.
  std::size_t write(const std::uint8_t* data, std::size_t size) {
    const std::size_t whole = size - size % Form::kBytes;
    for (std::size_t done = 0; done < whole;)
      done += squeeze_ ? writeUnlessRepeated(data + done) : writeMany(data + done, whole - done);
    return whole;
  }

  /// Writes the rest, which is shorter than a line. After a "*" the last line is written even if it repeats
  /// the one before, so that the dump tells where the bytes end.
  void finish(const std::uint8_t* rest, std::size_t size) {
    if (size > 0) {
      endRun();
      writeLine(offset_, rest, size);
    } else if (repeated_ > 0) {
      --repeated_;
      endRun();
      writeLine(offset_ - Form::kBytes, previous_, Form::kBytes);
    }
  }

 private:
  static constexpr std::size_t kMaxLineSize = LinePainter::maxLineSize<Form>();
  static constexpr std::size_t kMaxPlainSize = util::LineLayout<Form>::kMaxLength + 1;
  static constexpr std::size_t kMaxLines = OutputBuffer::kCapacity / kMaxPlainSize;

  /// Formats as many lines as the output buffer holds, which checks its room once for all of them.
  std::size_t writeMany(const std::uint8_t* data, std::size_t size) {
    if (painter_.isNeeded()) return writeOne(data);
    const std::size_t lines = std::min(size / Form::kBytes, kMaxLines);
    char* out = output_.reserve(lines * kMaxPlainSize);
    for (std::size_t line = 0; line < lines; ++line, offset_ += Form::kBytes)
      out = util::writeLine<Form>(out, offset_, data + line * Form::kBytes, Form::kBytes);
    output_.commit(out);
    return lines * Form::kBytes;
  }

  std::size_t writeOne(const std::uint8_t* data) {
    writeLine(offset_, data, Form::kBytes);
    offset_ += Form::kBytes;
    return Form::kBytes;
  }

  std::size_t writeUnlessRepeated(const std::uint8_t* data) {
    if (hasPrevious_ && std::memcmp(previous_, data, Form::kBytes) == 0) {
      ++repeated_;
    } else {
      endRun();
      writeLine(offset_, data, Form::kBytes);
      std::memcpy(previous_, data, Form::kBytes);
      hasPrevious_ = true;
    }
    offset_ += Form::kBytes;
    return Form::kBytes;
  }

  void endRun() {
    if (repeated_ > 0) output_.append("*\n", 2);
    repeated_ = 0;
  }

  void writeLine(std::uint64_t offset, const std::uint8_t* data, std::size_t size) {
    char* const out = output_.reserve(kMaxLineSize);
    output_.commit(painter_.isNeeded() ? painter_.writeLine<Form>(out, offset, data, size)
                                       : util::writeLine<Form>(out, offset, data, size));
  }

  OutputBuffer& output_;
  const LinePainter& painter_;
  std::uint64_t offset_;
  bool squeeze_;
  bool hasPrevious_ = false;
  std::uint64_t repeated_ = 0;  ///< lines since the last one that was written
  std::uint8_t previous_[Form::kBytes] = {};
};

}  // namespace vel::veldump
