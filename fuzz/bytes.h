// Support for fuzz targets: the check that ends a run, and an input that is parsed from left to right.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fuzz {

/// Aborts with a message if a condition is false.
inline void require(std::initializer_list<bool> conditions, const char* file = __builtin_FILE(),
                    int line = __builtin_LINE()) {
  const auto* const failed = std::ranges::find(conditions, false);
  if (failed == conditions.end()) return;
  std::fprintf(stderr, "%s:%d: condition %d does not hold\n", file, line,
               static_cast<int>(failed - conditions.begin()) + 1);
  std::abort();
}
inline void require(bool condition, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  require({condition}, file, line);
}

/// A NUL-terminated string in a block of exactly its size, so that sanitizers detect access out of bounds.
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
  /// Consumes a byte; returns 0 at the end.
  std::uint8_t byte() {
    const std::string_view byte = take(std::min<std::size_t>(1, rest_.size()));
    return byte.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(byte[0]);
  }
  /// Consumes a NUL-terminated text. The NUL of the last one may be missing.
  Text text() {
    const std::string_view text = take(std::min(rest_.find('\0'), rest_.size()));
    byte();
    return Text(text);
  }
  /// Consumes texts up to the end.
  std::vector<Text> texts() {
    std::vector<Text> texts;
    while (!atEnd()) texts.push_back(text());
    return texts;
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

/// A fuzz target. Each source *_fuzz.cpp defines one. With the fuzzer each is a program, which has no other
/// target; the program that replays inputs has all of them.
struct Target {
  const char* name;
  void (*run)(Bytes input);

  Target(const char* itsName, void (*itsRun)(Bytes)) : name(itsName), run(itsRun) { all().push_back(this); }
  static std::vector<const Target*>& all() {
    static std::vector<const Target*> targets;
    return targets;
  }
};

}  // namespace fuzz
