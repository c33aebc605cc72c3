// Whether names are links, or roots.
#pragma once

#include <string_view>

#include "platform/windows/wide_path.h"

namespace vel::platform {

/// Looks at the entry in its directory, for systems that open a link's target even if the link itself is
/// asked for: their handles do not show links.
bool isLinkNamed(const WidePath& path) noexcept;

/// Whether a path with prefix is the root of a drive, volume or share.
bool isRootPath(std::wstring_view path) noexcept;

}  // namespace vel::platform
