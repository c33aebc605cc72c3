// Turns the lines of a dump, hexadecimal or binary, back into bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tools/veldump/output_buffer.h"

namespace vel::veldump {

class DumpParser {
 public:
  /// `repeatable` is how many bytes a "*" may stand for; it counts down.
  DumpParser(OutputBuffer& output, std::uint64_t& repeatable) : output_(output), repeatable_(repeatable) {}

  /// Takes one line without its line break. False when it is none, its address is not where the line
  /// before ended, or a "*" before it stands for too many bytes; nothing of it is written then.
  bool parseLine(std::string_view line);
  /// Whether the last line was refused for the bytes that a "*" stands for.
  bool isBeyondLimit() const { return beyondLimit_; }
  /// Whether the dump can end here: not behind a "*".
  bool canEnd() const { return !squeezed_; }

 private:
  static constexpr std::size_t kMostBytes = 16;

  struct Line {
    std::uint64_t address = 0;
    std::size_t capacity = 0;  ///< of a line of this form
    std::size_t count = 0;
    std::uint8_t bytes[kMostBytes] = {};
  };

  template <typename Form>
  static bool decodeGroups(std::string_view text, Line& line);
  static bool decode(std::string_view text, Line& line);
  bool follows(const Line& line) const;
  bool repeatUpTo(std::uint64_t address);

  OutputBuffer& output_;
  std::uint64_t& repeatable_;
  Line previous_;
  bool started_ = false;
  bool squeezed_ = false;
  bool beyondLimit_ = false;
};

}  // namespace vel::veldump
