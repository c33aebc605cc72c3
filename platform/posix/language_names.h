// Windows language numbers of POSIX locale names. Which locale is in force is
// languages.cpp's business.
#pragma once

#include <cstdint>

namespace vel::platform {

/// The Windows language number (LANGID) of a locale name such as "de_DE.UTF-8", "pt-BR" or "de";
/// letter case and whatever follows a "." or "@" do not matter. A language without a territory,
/// or with one that has no number of its own, gets that of its main territory. 0 for null, "",
/// "C", "POSIX" and unknown languages.
std::uint32_t languageIdOfLocaleName(const char* localeName) noexcept;

}  // namespace vel::platform
