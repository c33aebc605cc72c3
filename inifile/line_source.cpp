// Cuts a file or bytes in memory into lines. A file is read through one buffer, and lines are spans of that
// buffer: no line is copied. Before each read the unfinished line moves to the front of the buffer, so a line
// is always in one piece. Classifying lines is ini_parser.cpp's work.
#include "inifile/line_source.h"

#include <algorithm>

#include "platform/byte_files.h"
#include "platform/files.h"

namespace vel::inifile {

namespace {

constexpr std::size_t kBufferSize = std::size_t{64} * 1024;

/// Some systems open a directory like a file and fail only when it is read.
bool isDirectory(const char* name) noexcept {
  const std::uint32_t attributes = platform::attributesOf(name);
  return attributes != platform::kAttributesUnreadable && (attributes & platform::kAttributeDirectory) != 0;
}

}  // namespace

LineSource::LineSource(const char* fileName) : isText_(true), isOpen_(false), buffer_(kBufferSize) {
  at_ = end_ = buffer_.data();
  isOpen_ = !isDirectory(fileName) && file_.open(fileName, platform::PipeWithoutWriter::Refuse) == 0;
}

/// Searches no farther than the longest line reaches, with its "\r" and its delimiter: bytes without a
/// delimiter need not be searched to their end.
const char* LineSource::findDelimiter() const noexcept {
  const std::size_t longest = kMaxLineLength + (isText_ ? 2 : 1);
  return Span{at_, at_ + std::min(longest, static_cast<std::size_t>(end_ - at_))}.find(delimiter_);
}

/// Moves the unread bytes to the front of the buffer and reads more. Returns false at the end of the file,
/// after a failed read, and for bytes in memory.
bool LineSource::refill() noexcept {
  if (!file_.isOpen()) return false;
  const auto left = static_cast<std::size_t>(end_ - at_);
  std::copy(at_, end_, buffer_.data());
  at_ = buffer_.data();
  end_ = at_ + left;
  std::size_t size = 0;
  if (platform::readBytes(file_.descriptor(), buffer_.data() + left, buffer_.size() - left, size) != 0)
    return false;
  end_ += size;
  return size > 0;
}

Span LineSource::next() {
  // Once more bytes than a line may have are there without a delimiter, more of them would not help.
  const char* delimiter = findDelimiter();
  while (delimiter == nullptr && static_cast<std::size_t>(end_ - at_) <= kMaxLineLength + 1 && refill())
    delimiter = findDelimiter();
  if (delimiter == nullptr) {
    isAtEnd_ = true;
    return consumeLine(end_);
  }
  const char* const begin = at_;
  const bool hasReturn = isText_ && delimiter != begin && delimiter[-1] == '\r';
  const Span line = consumeLine(hasReturn ? delimiter - 1 : delimiter);
  at_ = delimiter + 1;
  return line;
}

/// Returns the bytes up to `lineEnd` as a line and moves to there. A line that is too long is cut.
Span LineSource::consumeLine(const char* lineEnd) noexcept {
  Span line{at_, lineEnd};
  at_ = lineEnd;
  if (line.length() > kMaxLineLength) {
    // Intentional: a line that is too long ends the load, as getline would fail from then on.
    line.end = line.begin + kMaxLineLength;
    isAtEnd_ = true;
  }
  if (const char* const nul = line.find('\0'); nul != nullptr) line.end = nul;
  return line;
}

}  // namespace vel::inifile
