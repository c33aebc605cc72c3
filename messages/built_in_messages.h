// The library's own messages in English, compiled in: they serve where its catalog is not installed.
#ifndef MESSAGES_BUILT_IN_MESSAGES_H_
#define MESSAGES_BUILT_IN_MESSAGES_H_

#include <cstdint>

namespace vel::messages {

inline constexpr std::uint32_t kBuiltInMessageCount = 221;

/// By id; a literal each.
const char* const* builtInMessages() noexcept;

}  // namespace vel::messages

#endif
