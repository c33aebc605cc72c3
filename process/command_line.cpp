// Splitting a command line. The arguments are written over a copy of the line: none is longer than the text
// it is made from.
#include "process/command_line.h"

#include <cstring>

namespace vel::process {

namespace {

bool isBlank(char c) noexcept {
  return c == ' ' || c == '\t';
}

/// Reads a line behind the place where the arguments are written to.
class Splitter {
 public:
  explicit Splitter(char* line) noexcept : in_(line), out_(line) {}

  void takeProgramName() noexcept {
    bool quoted = false;
    for (; *in_ != '\0' && (quoted || !isBlank(*in_)); ++in_) {
      if (*in_ == '"')
        quoted = !quoted;
      else
        *out_++ = *in_;
    }
    terminate();
  }

  bool skipToNext() noexcept {
    while (isBlank(*in_)) ++in_;
    return *in_ != '\0';
  }

  void takeArgument() noexcept {
    bool quoted = false;
    while (*in_ != '\0' && (quoted || !isBlank(*in_))) {
      const std::size_t backSlashes = std::strspn(in_, "\\");
      in_ += backSlashes;
      if (*in_ == '"')
        takeQuote(backSlashes, quoted);
      else
        takePlain(backSlashes, quoted);
    }
    terminate();
  }

  char* place() const noexcept { return out_; }

 private:
  void write(char c, std::size_t count) noexcept {
    std::memset(out_, c, count);
    out_ += count;
  }

  void takeQuote(std::size_t backSlashes, bool& quoted) noexcept {
    write('\\', backSlashes / 2);
    const bool isDouble = quoted && in_[1] == '"';
    if (backSlashes % 2 != 0) {
      write('"', 1);
    } else if (isDouble) {
      write('"', 1);
      ++in_;
    } else {
      quoted = !quoted;
    }
    ++in_;
  }

  void takePlain(std::size_t backSlashes, bool quoted) noexcept {
    write('\\', backSlashes);
    if (*in_ != '\0' && (quoted || !isBlank(*in_))) write(*in_++, 1);
  }

  /// The separator is read before the terminator can take its place.
  void terminate() noexcept {
    if (*in_ != '\0') ++in_;
    *out_++ = '\0';
  }

  const char* in_;
  char* out_;
};

}  // namespace

Arguments::Arguments(const char* commandLine) : texts_(copyText(commandLine, std::strlen(commandLine))) {
  Splitter splitter(texts_.get());
  pointers_.push_back(splitter.place());
  splitter.takeProgramName();
  while (splitter.skipToNext()) {
    pointers_.push_back(splitter.place());
    splitter.takeArgument();
  }
  pointers_.push_back(nullptr);
}

}  // namespace vel::process
