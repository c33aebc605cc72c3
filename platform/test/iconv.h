// The iconv conversions of the system, as a reference where it has them.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace vel::test {

/// Converts from a code page to UTF-16LE; returns std::nullopt for ill-formed or unmapped bytes.
using Iconv = std::function<std::optional<std::string>(std::string bytes)>;

/// Returns null if the system does not know the code page.
Iconv iconvFrom(const std::string& page);

}  // namespace vel::test
