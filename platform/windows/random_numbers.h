// Random numbers of the system, which nobody can predict.
#pragma once

#include <cstdint>

#include "platform/windows/wide_path.h"

namespace vel::platform {

bool randomNumber(std::uint64_t& number) noexcept;

/// Appends "~", 15 random digits and ".tmp".
bool appendRandomEnd(GrowingText& name) noexcept;

}  // namespace vel::platform
