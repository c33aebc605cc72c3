// The library's own messages in English, compiled in. They are used
// where the library's catalog is not installed.
#pragma once

#include <cstdint>

namespace vel::messages {

inline constexpr std::uint32_t kBuiltInMessageCount = 221;

/// The table: kBuiltInMessageCount string literals, indexed by message id.
const char* const* builtInMessages() noexcept;

}  // namespace vel::messages
