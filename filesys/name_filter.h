// Wildcards for names in UTF-8: "*" stands for any text, "?" for one character.
#pragma once

#include <cstddef>
#include <string_view>

#include "foundation/allocator.h"

namespace vel::filesys {

class NameFilter {
 public:
  /// Everything matches.
  NameFilter() noexcept = default;
  explicit NameFilter(std::string_view pattern);

  /// Ignores case where names on this system do. A byte that is not well-formed matches itself and "?".
  bool matches(std::string_view name) const;

 private:
  bool matches(const Vector<char32_t>& name) const noexcept;

  bool matchesAll_ = true;
  Vector<char32_t> pattern_;
};

}  // namespace vel::filesys
