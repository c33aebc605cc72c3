// Maps POSIX locale names to LANGIDs and back. The platform decides which locale is in force.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vel {

/// Returns the LANGID of a locale name such as "de_DE.UTF-8", "pt-BR" or "de". Case
/// and everything after "." or "@" are ignored. A language without a territory, or with a territory that does
/// not have its own LANGID, gets the LANGID of its main territory. 0 for null, "", "C", "POSIX" and unknown
/// languages.
std::uint32_t languageIdOfLocaleName(const char* localeName) noexcept;

/// Returns the LANGID of a name that says exactly one of Windows: "de", "de_DE", "zh_Hant_HK", "sr_RS@latin",
/// "es-419". 0 for any other name, such as one with a territory that does not have its own LANGID, so that no
/// text is taken for one of another language.
std::uint32_t languageIdOfExactLocaleName(std::string_view localeName) noexcept;

/// The maximum length of the names below.
inline constexpr std::size_t kMaxLocaleName = 6;

/// Writes the name of a language, NUL-terminated: "de" for 1031 and for 7, "de_AT" for 3079. Languages whose
/// name alone leaves their script or territory open have both: "zh_CN", "pt_BR". Returns false, and leaves
/// `out` unchanged, if the number is not known.
bool localeNameOfLanguageId(std::uint32_t language, char (&out)[kMaxLocaleName + 1]) noexcept;

}  // namespace vel
