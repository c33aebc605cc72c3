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

  void parseProgramName() noexcept {
    bool quoted = false;
    for (; *in_ != '\0' && (quoted || !isBlank(*in_)); ++in_) {
      if (*in_ == '"')
        quoted = !quoted;
      else
        *out_++ = *in_;
    }
    terminate();
  }

  bool skipBlanks() noexcept {
    while (isBlank(*in_)) ++in_;
    return *in_ != '\0';
  }

  void parseArgument() noexcept {
    bool quoted = false;
    while (*in_ != '\0' && (quoted || !isBlank(*in_))) {
      const std::size_t backslashes = std::strspn(in_, "\\");
      in_ += backslashes;
      if (*in_ == '"')
        parseQuote(backslashes, quoted);
      else
        parseCharacter(backslashes, quoted);
    }
    terminate();
  }

  char* writePosition() const noexcept { return out_; }

 private:
  void write(char c, std::size_t count) noexcept {
    std::memset(out_, c, count);
    out_ += count;
  }

  void parseQuote(std::size_t backslashes, bool& quoted) noexcept {
    write('\\', backslashes / 2);
    const bool isDoubled = quoted && in_[1] == '"';
    if (backslashes % 2 != 0) {
      write('"', 1);
    } else if (isDoubled) {
      write('"', 1);
      ++in_;
    } else {
      quoted = !quoted;
    }
    ++in_;
  }

  void parseCharacter(std::size_t backslashes, bool quoted) noexcept {
    write('\\', backslashes);
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
  pointers_.push_back(splitter.writePosition());
  splitter.parseProgramName();
  while (splitter.skipBlanks()) {
    pointers_.push_back(splitter.writePosition());
    splitter.parseArgument();
  }
  pointers_.push_back(nullptr);
}

}  // namespace vel::process
