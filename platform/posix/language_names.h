// Maps POSIX locale names to LANGIDs. languages.cpp decides which locale is in force.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Returns the LANGID of a locale name such as "de_DE.UTF-8", "pt-BR" or "de". Case
/// and everything after "." or "@" are ignored. A language without a territory, or with a territory that does
/// not have its own LANGID, gets the LANGID of its main territory. 0 for null, "", "C", "POSIX" and unknown
/// languages.
std::uint32_t languageIdOfLocaleName(const char* localeName) noexcept;

}  // namespace vel::platform
