// Writes the library file around message tables: a 64-bit Windows DLL without code, whose only section holds
// the resources. portable_executable.h reads it.
#pragma once

#include "messages/catalog_texts.h"

namespace vel::messages {

/// Writes the file to `out`, which is empty. The same texts give the same bytes on every system. Returns
/// false if there is no text, or the file would be larger than `maxSize`.
bool writeCatalogImage(CatalogTexts& texts, std::size_t maxSize, Vector<std::uint8_t>& out);

}  // namespace vel::messages
