// What tools show on a terminal does not control it. Texts come from catalogs, which anybody may have made;
// in files and pipes they stay as they are.
#pragma once

#include <memory>
#include <ostream>
#include <streambuf>

namespace vel::tools {

/// Passes characters on, with "?" for each that could begin or end a command of a terminal: the control
/// characters of ASCII and, in UTF-8, those from U+0080 to U+009F. Line breaks, tabs and the beep pass.
class SafeBuffer : public std::streambuf {
 public:
  explicit SafeBuffer(std::streambuf* target) : target_(target) {}

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  int sync() override { return target_->pubsync(); }

 private:
  char safe(char c);

  std::streambuf* target_;
  char previous_ = '\0';
};

/// Until its end standard output and standard error are safe, where they are terminals.
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
