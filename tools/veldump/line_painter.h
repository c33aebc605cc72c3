// Formats lines of a dump whose characters come from a code page, or whose bytes are coloured by their kind.
// Plain lines, which are formatted many at once, do without this class.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "util/dump_line.h"
#include "vel_include/vel_codepage.h"
#include "vel_include/vel_consoleui.h"

namespace vel::veldump {

/// The kinds of bytes, which have a colour each.
enum class ByteKind : std::uint8_t { Zero, Blank, Printable, Control, Other };

class LinePainter {
 public:
  /// Shows printable ASCII, without colours.
  LinePainter();

  /// Shows the characters of a code page, in UTF-8. Returns false if there is no conversion from it. A byte
  /// that is not a character by itself, or not a printable one, is shown as ".".
  bool useCodePage(const VelClCCSID& ccsid);
  /// Colours the bytes by their kind, with the styles of standard output.
  void colorKinds(const VelClConsoleUI& ui);
  /// Colours the bytes that are marked.
  void colorMarks(const VelClConsoleUI& ui);

  /// Whether lines differ from plain ones.
  bool isNeeded() const { return isNeeded_; }

  /// The room that a line needs, with its line break.
  template <typename Form>
  static constexpr std::size_t maxLineSize() {
    return util::LineLayout<Form>::kMaxLength + 1 + Form::kBytes * (kMaxCharacter + 2 * kMaxSequence) +
           2 * kMaxSequence;
  }

  /// Writes a line with its line break and returns the end. Bytes whose bit is set in `marked` have the style
  /// of differences instead of the colour of their kind.
  template <typename Form>
  char* writeLine(char* out, std::uint64_t offset, const std::uint8_t* data, std::size_t count,
                  std::uint32_t marked = 0) const {
    using Layout = util::LineLayout<Form>;
    char plain[Layout::kLength + 1];
    util::writeData<Form>(plain, data, count);
    out = util::writeAddress(out, offset);
    const char* style = plain_;
    std::size_t done = 0;
    for (std::size_t i = 0; i < count; ++i) {
      out = copy(out, plain + done, Layout::groupAt(i) - done);
      out = change(out, style, styleOf(data[i], marked >> i & 1));
      done = Layout::groupAt(i);
    }
    out = copy(out, plain + done, Form::kDigits);
    done += Form::kDigits;
    out = change(out, style, plain_);
    out = copy(out, plain + done, Layout::kCharacters - done);
    for (std::size_t i = 0; i < count; ++i) {
      out = change(out, style, styleOf(data[i], marked >> i & 1));
      const std::string& shown = shown_[data[i]];
      out = copy(out, shown.data(), shown.size());
    }
    out = change(out, style, plain_);
    out = copy(out, plain + Layout::kCharacters + count, Form::kBytes - count);
    *out = '\n';
    return out + 1;
  }

 private:
  /// The most bytes of a character in UTF-8, and of a control sequence.
  static constexpr std::size_t kMaxCharacter = 4;
  static constexpr std::size_t kMaxSequence = 8;

  static char* copy(char* out, const char* text, std::size_t size) {
    std::memcpy(out, text, size);
    return out + size;
  }
  /// Writes the sequence of a style unless it is the current one. Styles are compared by pointer.
  static char* change(char* out, const char*& style, const char* next) {
    if (style == next) return out;
    style = next;
    return copy(out, next, std::strlen(next));
  }
  const char* styleOf(std::uint8_t byte, bool isMarked) const {
    return isMarked ? marked_ : styles_[static_cast<std::size_t>(kinds_[byte])];
  }
  void show(std::uint8_t byte, char32_t character);

  std::array<std::string, 256> shown_;
  std::array<ByteKind, 256> kinds_{};
  std::array<const char*, 5> styles_;
  const char* plain_;
  const char* marked_;
  bool isNeeded_ = false;
};

}  // namespace vel::veldump
