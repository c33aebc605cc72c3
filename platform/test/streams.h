// Replaces what is typed and shown, for the duration of a test.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace vel::test {

/// Replaces the buffers of std::cin and std::cout until the end of this object.
class Streams {
 public:
  explicit Streams(const std::string& typed = "")
      : typed_(typed), input_(std::cin.rdbuf(&typed_)), output_(std::cout.rdbuf(&shown_)) {}
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  ~Streams() {
    std::cin.rdbuf(input_);
    std::cout.rdbuf(output_);
  }

  std::string shown() const { return shown_.str(); }

 private:
  std::stringbuf typed_, shown_;
  std::streambuf *input_, *output_;
};

}  // namespace vel::test
