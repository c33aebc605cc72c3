// Opens a message catalog, by its name, and looks into it. Then writes one.
#include <vel.h>

#include <iostream>
#include <string_view>

namespace {

/// What the program says if the catalog cannot be loaded. The entry at an index is the message of that
/// number.
constexpr const char* kTexts[] = {"[VEL_MSGTAB_SIGNATURE] 4", "[DEMO]", "%1 of %2 files", "no files"};

/// Writes a catalog with a message in two languages: 1033 is English, 1031 German.
bool writeCatalog(const char* name) {
  constexpr std::string_view kEnglish = "%1 files%0", kGerman = "%1 Dateien%0";
  VelClMessageCatalogWriter writer((VelClFilename(name)));
  return writer.setText(1033, 1, kEnglish.data(), kEnglish.size()) &&
         writer.setText(1031, 1, kGerman.data(), kGerman.size()) && writer.write();
}

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

  if (argc < 3) return 0;
  if (!writeCatalog(argv[2])) return 1;
  const VelClMessageCatalog written((VelClFilename(argv[2])));
  std::cout << written.getAsCString() << ": " << VelClMessage(written, 1, "5").getAsCString() << '\n';
}
