// Cuts bytes into lines as std::istream::getline does with a buffer for 1,023 characters. The bytes after the
// last delimiter are a line as well, even an empty one. Reading ends with a line that is longer: only its
// first 1,023 characters are returned.
#pragma once

#include <cstddef>

#include "foundation/allocator.h"
#include "inifile/text_rules.h"
#include "platform/byte_files.h"

namespace vel::inifile {

class LineSource {
 public:
  /// In Text, a "\r" before a delimiter is dropped.
  enum class Bytes { Plain, Text };

  /// Reads the caller's bytes, which are not copied and must outlive the source.
  LineSource(const char* bytes, std::size_t size, char delimiter, Bytes kind = Bytes::Plain) noexcept
      : at_(bytes), end_(bytes + size), delimiter_(delimiter), isText_(kind == Bytes::Text) {}
  /// Reads a file as text in lines that end in "\n".
  explicit LineSource(const char* fileName);
  LineSource(const LineSource&) = delete;
  LineSource& operator=(const LineSource&) = delete;
  ~LineSource() = default;

  /// Whether the file could be opened.
  bool isOpen() const noexcept { return isOpen_; }
  /// Whether the last line was returned. An empty source has one line, which is empty.
  bool isAtEnd() const noexcept { return isAtEnd_; }
  /// Returns the next line without its delimiter, cut at its first NUL. It is valid until the next call.
  Span next();
  /// Returns the start of the next line.
  const char* position() const noexcept { return at_; }

 private:
  const char* findDelimiter() const noexcept;
  bool refill() noexcept;
  Span consumeLine(const char* lineEnd) noexcept;

  const char* at_ = nullptr;
  const char* end_ = nullptr;
  char delimiter_ = '\n';
  bool isText_ = false;
  bool isOpen_ = true;
  bool isAtEnd_ = false;
  platform::ReadableFile file_;
  Vector<char> buffer_;
};

}  // namespace vel::inifile
