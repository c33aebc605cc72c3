// Parses the lines of a hexadecimal or binary dump, also one of xxd or hexdump -C, and writes the bytes that
// they show.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tools/output_buffer.h"
#include "tools/veldump/peer_dumps.h"

namespace vel::veldump {

using tools::OutputBuffer;

class DumpParser {
 public:
  /// `repeatable` is the number of bytes that lines "*" may still stand for; it counts down. Both must
  /// outlive the parser.
  DumpParser(OutputBuffer& output, std::uint64_t& repeatable) : output_(output), repeatable_(repeatable) {}
  DumpParser(const DumpParser&) = delete;
  DumpParser& operator=(const DumpParser&) = delete;
  ~DumpParser() = default;

  /// Parses one line, given without its line break, and writes its bytes. Returns false, with none of them
  /// written, if it is not a line of a dump, does not follow the line before it, or a "*" before it stands
  /// for too many bytes.
  bool parseLine(std::string_view line);
  /// Whether the last line was refused because a "*" stands for too many bytes.
  bool isBeyondLimit() const { return beyondLimit_; }
  /// Whether the last line was refused because of little-endian groups. Without characters beside them they
  /// cannot be told from others.
  bool isReversed() const { return isReversed_; }
  /// Whether the dump can end here. After a "*" it cannot: only the next line determines how many bytes it
  /// stands for.
  bool canEnd() const { return !squeezed_; }

 private:
  /// Which program wrote the dump. The first line tells; later ones must be of the same program.
  enum class Writer : std::uint8_t { Unknown, Veldump, Xxd, Hexdump };

  template <typename Form>
  static bool decodeGroups(std::string_view text, DumpLine& line);
  static bool decodeOwn(std::string_view text, DumpLine& line);
  bool decode(std::string_view text, DumpLine& line);
  bool follows(const DumpLine& line) const;
  bool repeatUpTo(std::uint64_t address);

  OutputBuffer& output_;
  std::uint64_t& repeatable_;
  /// The last line and the one that is being parsed take turns, because copying lines would take as long as
  /// parsing them.
  DumpLine lines_[2];
  DumpLine* previous_ = &lines_[0];
  DumpLine* next_ = &lines_[1];
  Writer writer_ = Writer::Unknown;
  bool started_ = false;
  bool squeezed_ = false;
  bool ended_ = false;  ///< the line that ends a dump of hexdump -C was parsed
  bool beyondLimit_ = false;
  bool isReversed_ = false;
};

}  // namespace vel::veldump
