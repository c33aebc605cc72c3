// Opens a message catalog, by its name, and looks into it.
#include <vel.h>

#include <iostream>

namespace {

/// What the program says if the catalog cannot be loaded. The entry at an index is the message of that
/// number.
constexpr const char* kTexts[] = {"[VEL_MSGTAB_SIGNATURE] 4", "[DEMO]", "%1 of %2 files", "no files"};

}  // namespace

int main(int argc, char** argv) {
  VelClMessageCatalogProxy proxy(VelClFilename(argc > 1 ? argv[1] : "absent"), kTexts, std::size(kTexts));
  std::cout << (proxy.isValid() ? "from the library, " : "from the table, ") << proxy.getMessage(2) << '\n';

  const VelClMessageCatalog table(kTexts, std::size(kTexts));
  const VelClMessage message(table, 2, "3", "5");
  std::cout << message.getId() << ": " << message.getAsCString() << '\n';
  VelClMessageCatalogCursor cursor(table);
  for (bool more = cursor.setToFirst(); more; more = cursor.setToNext())
    if (cursor.getId() >= 2) std::cout << cursor.getId() << " as stored: " << cursor.getAsCString() << '\n';

  const VelClLanguage language("de-AT");
  char code[8];
  language.extractISOLongCode(code);
  std::cout << VelClLanguage::getLanguageName(language.getLanguage()) << ", "
            << VelClLanguage::getTerritoryName(language.getTerritory()) << ", " << code << '\n';
}
