// Proves that the texts of a tool are a string table, see VelClMessageCatalog::useStringTable.
#pragma once

#include <cstddef>
#include <string_view>

namespace vel::tools {

/// Returns whether there is a text for each id below `end`, and the first text is the signature that states
/// `end`.
template <std::size_t size>
consteval bool isStringTable(const char* const (&texts)[size], unsigned long end) {
  constexpr std::string_view kSignature = "[VEL_MSGTAB_SIGNATURE] ";
  const std::string_view first = texts[0];
  if (!first.starts_with(kSignature)) return false;
  unsigned long stated = 0;
  for (const char digit : first.substr(kSignature.size()))
    stated = stated * 10 + static_cast<unsigned long>(digit - '0');
  return size == end && stated == end;
}

}  // namespace vel::tools
