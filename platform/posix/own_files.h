// Locates the files of the program and of this library.
#pragma once

#include <string_view>

#include "platform/posix/file_search.h"

namespace vel::platform {

/// Returns the program's directory with its final "/", in `buffer`; "" if the system cannot tell.
std::string_view programDirectory(PathBuffer& buffer) noexcept;
/// Returns this library's directory with its final "/"; the program's if the library is linked into it.
std::string_view libraryDirectory() noexcept;

}  // namespace vel::platform
