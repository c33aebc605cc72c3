// Keeps texts from controlling the terminal that shows them. Tools show texts from files and catalogs that
// anybody may have written, and an escape sequence in one could rewrite the screen or the title of its
// window. Output to files and pipes is not changed.
#pragma once

#include <memory>
#include <ostream>
#include <streambuf>

namespace vel::tools {

/// Passes characters to another buffer, with "?" for each one that could begin or end a control sequence of a
/// terminal: C0 controls, DEL and, in UTF-8, C1 controls. LF, CR, tabs and the bell pass.
class SafeBuffer : public std::streambuf {
 public:
  explicit SafeBuffer(std::streambuf* target) : target_(target) {}

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  int sync() override { return target_->pubsync(); }

 private:
  /// Returns the character to show. Remembers `c`, since a UTF-8 character may be split over two calls.
  char safe(char c);

  std::streambuf* target_;
  char previous_ = '\0';
};

/// While this object lives, std::cout and std::cerr pass through a SafeBuffer where they are terminals.
class SafeTerminal {
 public:
  SafeTerminal();
  SafeTerminal(const SafeTerminal&) = delete;
  SafeTerminal& operator=(const SafeTerminal&) = delete;
  ~SafeTerminal() = default;

 private:
  struct Stream {
    Stream(std::ostream& stream, int descriptor);
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() { stream_.rdbuf(previous_); }

    std::ostream& stream_;
    std::streambuf* previous_;
    SafeBuffer buffer_;
  };

  Stream output_, errors_;
};

}  // namespace vel::tools
