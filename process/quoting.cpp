// Quotes arguments for the splitters of command lines; command_line.cpp is the library's own. Each rule is
// written once, as a template that a counter and a writer run: the first gives the length, the second the
// text.
#include "vel_include/vel_quoting.h"

#include <cstring>
#include <string_view>

namespace {

/// Counts the bytes of a result.
class Counter {
 public:
  void add(char, std::size_t count = 1) noexcept { size_ += count; }
  std::size_t size() const noexcept { return size_; }

 private:
  std::size_t size_ = 0;
};

/// Writes a result to a buffer that is large enough.
class Writer {
 public:
  explicit Writer(char* out) noexcept : out_(out) {}
  void add(char c, std::size_t count = 1) noexcept {
    std::memset(out_, c, count);
    out_ += count;
  }

 private:
  char* out_;
};

/// Writes the text between quotes. Backslashes are doubled only before a quote; elsewhere they are ordinary.
/// Quotes are never doubled, because the splitters of Windows differ in what follows two of them. Returns the
/// number of backslashes at the end of the text, which the closing quote would escape.
template <typename Output>
std::size_t addEscaped(std::string_view text, Output& output) noexcept {
  std::size_t backslashes = 0;
  for (const char c : text) {
    if (c == '"') output.add('\\', backslashes + 1);
    backslashes = c == '\\' ? backslashes + 1 : 0;
    output.add(c);
  }
  return backslashes;
}

struct ForWindows {
  template <typename Output>
  static void quote(std::string_view text, Output& output) noexcept {
    output.add('"');
    output.add('\\', addEscaped(text, output));
    output.add('"');
  }
};

struct ForAddArgument {
  /// addArgument adds the quotes if the text has a blank, and one backslash if the text ends in one.
  template <typename Output>
  static void quote(std::string_view text, Output& output) noexcept {
    if (text.find(' ') == std::string_view::npos) {
      ForWindows::quote(text, output);
      return;
    }
    const std::size_t backslashes = addEscaped(text, output);
    if (backslashes > 0) output.add('\\', backslashes - 1);
  }
};

struct ForShell {
  /// Nothing can escape a single quote within single quotes, so it ends them, and others begin after it.
  template <typename Output>
  static void quote(std::string_view text, Output& output) noexcept {
    output.add('\'');
    for (const char c : text) {
      output.add(c);
      if (c != '\'') continue;
      output.add('\\');
      output.add('\'', 2);
    }
    output.add('\'');
  }
};

template <typename Rule>
std::size_t quoteBy(const char* bytes, std::size_t size, char* out, std::size_t capacity) noexcept {
  const std::string_view text(bytes, bytes != nullptr ? size : 0);
  Counter counter;
  if (text.find('\0') == std::string_view::npos) Rule::quote(text, counter);
  const std::size_t length = counter.size();
  if (capacity == 0) return length;
  const bool fits = length > 0 && length < capacity;
  if (fits) {
    Writer writer(out);
    Rule::quote(text, writer);
  }
  out[fits ? length : 0] = '\0';
  return length;
}

}  // namespace

std::size_t velQuoteForAddArgument(const char* text, std::size_t size, char* out, std::size_t capacity) {
  return quoteBy<ForAddArgument>(text, size, out, capacity);
}

std::size_t velQuoteForWindows(const char* text, std::size_t size, char* out, std::size_t capacity) {
  return quoteBy<ForWindows>(text, size, out, capacity);
}

std::size_t velQuoteForShell(const char* text, std::size_t size, char* out, std::size_t capacity) {
  return quoteBy<ForShell>(text, size, out, capacity);
}
