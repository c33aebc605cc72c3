// A line on standard output in verbose mode.
#pragma once

#include <iostream>
#include <locale>
#include <ostream>

#include "vel_include/vel_trace.h"

namespace vel::trace {

/// Begins with the frame's prefix and ends with its suffix. Numbers are plain decimal ones, and no failure
/// throws, whatever the program has made of std::cout.
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
