// The library's own messages in English, compiled in: they serve where its catalog is not installed.
#pragma once

#include <cstdint>

namespace vel::messages {

inline constexpr std::uint32_t kBuiltInMessageCount = 221;

/// By id; a literal each.
const char* const* builtInMessages() noexcept;

}  // namespace vel::messages
