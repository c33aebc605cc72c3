// Regular expressions over bytes, in time that grows with the text only, not with what the expression allows:
//
//   .        any byte                 ab    a, then b          a*  a+  a?   none or more, one or more, at
//   most one [a-z_]   one of these             a|b   a or b             (a)          a group
//   [^a-z]   none of these            ^ $   start, end         \d \w \s     digit; letter, digit or _; white
//   space \n \t    line feed, tab           \xNN  the byte NN        \. \\ ...    the character itself
//
// An expression is compiled to a list of instructions, which all ways through the expression execute in step.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vel::veltrace {

class RegularExpression {
 public:
  /// Returns false for an invalid expression, and sets `position` to that of the byte, from 1, where it is
  /// invalid.
  bool parse(std::string_view expression, std::size_t& position);
  /// Returns whether the expression matches anywhere in the text.
  bool isIn(std::string_view text) const;

 private:
  using ByteSet = std::bitset<256>;
  enum class Operation : std::uint8_t { Byte, Set, Split, Start, End, Match };
  struct Instruction {
    Operation operation;
    unsigned char byte;
    std::uint32_t set;          ///< index in sets_
    std::uint32_t next, other;  ///< where execution goes on; other is for Split
  };
  class Parser;
  class Threads;

  std::vector<Instruction> program_;
  std::vector<ByteSet> sets_;
  std::uint32_t start_ = 0;
};

}  // namespace vel::veltrace
