// Connects the standard streams with the console functions. They stay so until this library is unloaded, at
// the latest at the end of the program, and then have their own buffers again.
#include <ext/stdio_sync_filebuf.h>

#include <cerrno>
#include <fstream>
#include <iostream>
#include <streambuf>

#include "platform/console_text.h"
#include "platform/descriptors.h"

namespace vel::platform {

namespace {

/// Unbuffered, like the runtime's own output to a console, so that its texts and those of C functions appear
/// in the order in which they were written.
class OutputBuffer : public std::streambuf {
 public:
  explicit OutputBuffer(int descriptor) : descriptor_(descriptor) {}

 protected:
  int_type overflow(int_type c) override {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char text = traits_type::to_char_type(c);
    return xsputn(&text, 1) == 1 ? c : traits_type::eof();
  }
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    return writeConsole(descriptor_, text, static_cast<std::size_t>(size)) == 0 ? size : 0;
  }

 private:
  int descriptor_;
};

/// Sets errno if reading fails, as the runtime's buffer does.
class InputBuffer : public std::streambuf {
 protected:
  int_type underflow() override {
    std::size_t size = 0;
    if (const SystemError error = readConsole(line_, sizeof line_, size); error != 0) errno = error;
    setg(line_, line_, line_ + size);
    return size == 0 ? traits_type::eof() : traits_type::to_int_type(line_[0]);
  }

 private:
  char line_[512];
};

/// Whether a buffer is the one that the runtime gave to a standard stream.
bool isRuntimes(const std::streambuf* buffer) {
  return dynamic_cast<const __gnu_cxx::stdio_sync_filebuf<char>*>(buffer) != nullptr ||
         dynamic_cast<const std::filebuf*>(buffer) != nullptr;
}

/// Replaces the buffer of a stream.
class Replaced {
 public:
  Replaced(std::ios& stream, int descriptor, std::streambuf& buffer)
      : stream_(stream), before_(stream.rdbuf()), buffer_(buffer) {
    if (isConsoleInUtf8(descriptor) && isRuntimes(before_)) exchange(&buffer_);
  }
  Replaced(const Replaced&) = delete;
  Replaced& operator=(const Replaced&) = delete;
  ~Replaced() {
    if (stream_.rdbuf() == &buffer_) exchange(before_);
  }

 private:
  /// Keeps the state of the stream, which a new buffer would clear.
  void exchange(std::streambuf* buffer) {
    const std::ios::iostate state = stream_.rdstate();
    stream_.rdbuf(buffer);
    stream_.clear(state);
  }

  std::ios& stream_;
  std::streambuf* before_;
  std::streambuf& buffer_;
};

struct Streams {
  OutputBuffer output{kStandardOutput}, errors{kStandardError};
  InputBuffer input;
  Replaced cout{std::cout, kStandardOutput, output}, cerr{std::cerr, kStandardError, errors},
      clog{std::clog, kStandardError, errors}, cin{std::cin, kStandardInput, input};
};

}  // namespace

void useConsoleStreams() {
  [[maybe_unused]] static Streams streams;
}

}  // namespace vel::platform
