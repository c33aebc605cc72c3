// Cuts bytes into lines the way a stream's getline with room for 1,023 characters does: the bytes behind the
// last delimiter are a line as well, even when there are none, and a longer line leaves nothing behind it to
// read.
#pragma once

#include <cstddef>

#include "foundation/allocator.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

class LineSource {
 public:
  /// Whether a "\r" before a delimiter is dropped.
  enum class Bytes { Plain, Text };

  /// Bytes of the caller's, not copied.
  LineSource(const char* bytes, std::size_t size, char delimiter, Bytes kind = Bytes::Plain) noexcept
      : at_(bytes), end_(bytes + size), delimiter_(delimiter), isText_(kind == Bytes::Text) {}
  /// A file's bytes as text, in lines that end in "\n".
  explicit LineSource(const char* fileName);
  LineSource(const LineSource&) = delete;
  LineSource& operator=(const LineSource&) = delete;
  ~LineSource();

  /// Whether there was such a file.
  bool isOpen() const noexcept { return isOpen_; }
  /// Whether the last line was read.
  bool isAtEnd() const noexcept { return isAtEnd_; }
  /// The next line without its delimiter, from its first NUL on cut, and valid until the next call.
  Span next();
  /// Where the next line begins.
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
  int descriptor_ = -1;
  Vector<char> buffer_;
};

}  // namespace vel::inifile
