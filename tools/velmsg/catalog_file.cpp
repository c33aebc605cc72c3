// The texts of a library of Windows are often in a file of their own for each language, in a directory that
// is named for the language. The library itself then has resources, but no message table.
#include "tools/velmsg/catalog_file.h"

#include <string>

#include "base/ascii.h"
#include "vel_include/vel_filesys.h"

namespace vel::velmsg {
namespace {

using Catalog = std::unique_ptr<VelClMessageCatalog>;

Catalog openAsNamed(const std::string& file) {
  return std::make_unique<VelClMessageCatalog>(VelClFilename(file.c_str()),
                                               VelClMessageCatalog::VelEnFile::AS_NAMED);
}

bool hasMessages(const VelClMessageCatalog& catalog) {
  return VelClMessageCatalogCursor(catalog).setToFirst();
}

/// Returns the name of the user's language as directories have it, such as "de-DE".
std::string userLanguage() {
  const VelClLanguage language = VelClLanguage::getUserLanguage();
  std::string tag = std::string(language.getLanguageCode()) + VelClLanguage::getCombiningChar();
  for (const char* code = language.getTerritoryCodeShort(); *code != '\0'; ++code) tag += toAsciiUpper(*code);
  return tag;
}

std::string translatedName(const std::string& file, const std::string& language) {
  const std::size_t separator = file.find_last_of("/\\");
  const std::size_t start = separator == std::string::npos ? 0 : separator + 1;
  const char slash = start == 0 ? '\\' : file[separator];
  return file.substr(0, start) + language + slash + file.substr(start) + ".mui";
}

/// If neither can be opened, returns the library.
Catalog openLibraryOrFile(const char* file) {
  Catalog library = std::make_unique<VelClMessageCatalog>(VelClFilename(file));
  if (library->isValid()) return library;
  Catalog named = openAsNamed(file);
  if (named->isValid()) return named;
  return library;
}

}  // namespace

std::unique_ptr<VelClMessageCatalog> openCatalogFile(const char* file) {
  Catalog found = openLibraryOrFile(file);
  if (!found->isValid() || hasMessages(*found)) return found;
  for (const std::string& language : {userLanguage(), std::string("en-US")}) {
    Catalog translated = openAsNamed(translatedName(file, language));
    if (translated->isValid() && hasMessages(*translated)) return translated;
  }
  return found;
}

}  // namespace vel::velmsg
