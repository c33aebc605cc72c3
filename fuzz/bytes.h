// What fuzz targets share: the check that ends a run, and an input that is taken apart from left to right.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

inline void require(bool holds) {
  if (!holds) std::abort();
}

/// Terminated, in a block of exactly its size, so that a step out of it is seen.
struct Text : std::vector<char> {
  explicit Text(std::string_view text) : vector(text.size() + 1) {
    std::copy(text.begin(), text.end(), begin());
  }
  operator const char*() const { return data(); }
  std::string_view view() const { return {data(), size() - 1}; }
};

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  bool atEnd() const { return rest_.empty(); }
  /// 0 at the end.
  std::uint8_t number() {
    const std::string_view byte = take(std::min<std::size_t>(1, rest_.size()));
    return byte.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(byte[0]);
  }
  /// Up to the next zero, which is passed.
  Text text() {
    const std::string_view text = take(std::min(rest_.find('\0'), rest_.size()));
    number();
    return Text(text);
  }
  std::string_view rest() const { return rest_; }

 private:
  std::string_view take(std::size_t size) {
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return taken;
  }

  std::string_view rest_;
};

}  // namespace fuzz
