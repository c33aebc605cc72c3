// The options that ini_saver writes.
#pragma once

#include <cstddef>

namespace vel::test {

inline constexpr int kSavedOptions = 1000;
inline constexpr std::size_t kSavedLength = 200;

}  // namespace vel::test
