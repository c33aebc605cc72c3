// The system's own conversions as a second opinion, where it has them.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace vel::test {

/// Converts from a page to UTF-16, low byte first; nothing for what has no mapping.
using Iconv = std::function<std::optional<std::string>(std::string bytes)>;

/// Empty where the system does not know the page.
Iconv iconvFrom(const std::string& page);

}  // namespace vel::test
