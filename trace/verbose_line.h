// Writes a line to standard output in verbose mode.
#pragma once

#include <iostream>
#include <locale>
#include <ostream>

#include "vel_include/vel_trace.h"

namespace vel::trace {

/// A temporary of this class writes one line: prefix, values, suffix. It uses the buffer of std::cout through
/// a separate stream, so that neither the program's settings of std::cout (base, locale, exceptions) change
/// the line, nor this changes them.
class VerboseLine {
 public:
  VerboseLine() : out_(std::cout.rdbuf()) {
    out_.imbue(std::locale::classic());
    out_ << VelClTraceSettings::getVerbosePrefix();
  }
  VerboseLine(const VerboseLine&) = delete;
  VerboseLine& operator=(const VerboseLine&) = delete;
  ~VerboseLine() { out_ << VelClTraceSettings::getVerboseSuffix(); }

  template <typename Value>
  VerboseLine& operator<<(const Value& value) {
    out_ << value;
    return *this;
  }

 private:
  std::ostream out_;
};

}  // namespace vel::trace
