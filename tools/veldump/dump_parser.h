// Parses the lines of a hexadecimal or binary dump and writes the bytes that they show.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tools/veldump/output_buffer.h"

namespace vel::veldump {

class DumpParser {
 public:
  /// `repeatable` is the number of bytes that lines "*" may still stand for; it counts down. Both must
  /// outlive the parser.
  DumpParser(OutputBuffer& output, std::uint64_t& repeatable) : output_(output), repeatable_(repeatable) {}

  /// Parses one line, given without its line break, and writes its bytes. Returns false, with none of them
  /// written, if it is not a line of a dump, does not follow the line before it, or a "*" before it stands
  /// for too many bytes.
  bool parseLine(std::string_view line);
  /// Whether the last line was refused because a "*" stands for too many bytes.
  bool isBeyondLimit() const { return beyondLimit_; }
  /// Whether the dump can end here. After a "*" it cannot: only the next line determines how many bytes it
  /// stands for.
  bool canEnd() const { return !squeezed_; }

 private:
  static constexpr std::size_t kMaxBytes = 16;

  struct Line {
    std::uint64_t address = 0;
    std::size_t capacity = 0;  ///< bytes in a full line of this form
    std::size_t count = 0;
    std::uint8_t bytes[kMaxBytes] = {};
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
