// The encoding of the narrow texts that this process exchanges with the system.
#pragma once

namespace vel::platform {

/// From now on all narrow texts that meet the system are UTF-8: names, environment, command lines. Windows
/// only, where they are in the ANSI code page otherwise. On POSIX systems names are bytes, and the locale
/// decides about texts: there this does nothing.
void useUtf8() noexcept;

}  // namespace vel::platform
