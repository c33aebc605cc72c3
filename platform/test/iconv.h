// The system's own conversions as a second opinion, where it has them.
#pragma once

#include <optional>
#include <string>

namespace vel::test {

/// From a page to UTF-16, low byte first.
class Iconv {
 public:
  explicit Iconv(const std::string& page);
  ~Iconv();
  Iconv(const Iconv&) = delete;
  Iconv& operator=(const Iconv&) = delete;

  /// False where the system does not know the page.
  bool isThere() const { return handle_ != nullptr; }

  /// Nothing for what has no mapping.
  std::optional<std::string> convert(std::string bytes) const;

 private:
  void* handle_;
};

}  // namespace vel::test
