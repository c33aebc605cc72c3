// Splits a command line into arguments by the rules that command_line.h states. process/new_process.cpp
// builds command lines.
//
// The arguments are written over the copy of the line that they are parsed from. Removing quotes and
// backslashes only shortens them, so the write position never passes the read position, and one allocation
// holds all of them:
//
//   line        prog "b c" d
//   arguments   prog0b c0d0      (0 is a NUL)
#include "environment/command_line.h"

#include <cstring>

namespace vel::environment {

namespace {

/// Blanks and tabs separate arguments; line breaks do not.
bool isBlank(char c) noexcept {
  return c == ' ' || c == '\t';
}

/// A parser whose output replaces its input; see the top of this file.
class Splitter {
 public:
  explicit Splitter(char* line) noexcept : in_(line), out_(line) {}

  /// Copies the program's name. Backslashes are ordinary here, also before a quote:
  /// `"C:\dir\"` is a directory in quotes.
  void parseProgramName() noexcept {
    bool quoted = false;
    for (; inArgument(quoted); ++in_) {
      if (*in_ == '"')
        quoted = !quoted;
      else
        *out_++ = *in_;
    }
    terminate();
  }

  /// Skips separators; returns false at the end of the line.
  bool skipBlanks() noexcept {
    while (isBlank(*in_)) ++in_;
    return *in_ != '\0';
  }

  /// Copies one argument without its quotes and escaping backslashes.
  void parseArgument() noexcept {
    bool quoted = false;
    while (inArgument(quoted)) {
      // The meaning of backslashes depends on whether a quote follows, so they are counted first.
      const std::size_t backslashes = std::strspn(in_, "\\");
      in_ += backslashes;
      if (*in_ == '"')
        parseQuote(backslashes, quoted);
      else
        parseCharacter(backslashes, quoted);
    }
    terminate();
  }

  /// Returns where the next argument will begin.
  char* writePosition() const noexcept { return out_; }

 private:
  /// Returns whether the next character belongs to the current argument.
  bool inArgument(bool quoted) const noexcept { return *in_ != '\0' && (quoted || !isBlank(*in_)); }

  void write(char c, std::size_t count) noexcept {
    std::memset(out_, c, count);
    out_ += count;
  }

  /// Consumes a quote that follows `backslashes` backslashes. A quote after an odd number of them, and the
  /// first of two quotes within quotes, is an ordinary character; any other begins or ends a quoted section.
  void parseQuote(std::size_t backslashes, bool& quoted) noexcept {
    write('\\', backslashes / 2);
    if (backslashes % 2 != 0) {
      write('"', 1);
    } else if (quoted && in_[1] == '"') {
      write('"', 1);
      ++in_;
    } else {
      quoted = !quoted;
    }
    ++in_;
  }

  /// Writes backslashes that are not followed by a quote, and the next character unless it ends the argument.
  void parseCharacter(std::size_t backslashes, bool quoted) noexcept {
    write('\\', backslashes);
    if (inArgument(quoted)) write(*in_++, 1);
  }

  /// Ends an argument. The separator is consumed first, because the NUL may be written over it.
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

}  // namespace vel::environment
