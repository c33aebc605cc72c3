// Opens a message catalog and chooses its language. Which source
// supplies a message is decided in message.cpp.
#include <array>
#include <clocale>

#include "messages/catalog_library.h"
#include "platform/catalogs.h"
#include "platform/languages.h"
#include "vel_include/vel_messages.h"

namespace {

constexpr const char* kDefaultCatalog = "qammsg50";
constexpr const char* kLibraryType = "DLL";
// A library supports a language if it has this message in it.
constexpr std::uint32_t kProbeMessage = 1;
constexpr std::uint32_t kEnglishUnitedStates = 1033;

VelClFilename withLibraryType(const VelClFilename& name) {
  VelClFilename library(name);
  library.setNewExtension(kLibraryType);
  return library;
}

std::array<std::uint32_t, 2> preferredLanguages() {
  return {vel::platform::userLanguage(), vel::platform::systemLanguage()};
}

}  // namespace

VelClMessageCatalog::VelClMessageCatalog()
    : VelClFile(VelClFilename(kDefaultCatalog), kLibraryType), default_(true) {
  open();
}

VelClMessageCatalog::VelClMessageCatalog(const VelClFilename& name)
    : VelClMessageCatalog(name, VelEnFile::LIBRARY) {}

VelClMessageCatalog::VelClMessageCatalog(const VelClFilename& name, VelEnFile file)
    : VelClFile(file == VelEnFile::LIBRARY ? withLibraryType(name) : name, nullptr) {
  open();
}

VelClMessageCatalog::VelClMessageCatalog(const char* const* table, unsigned long size)
    : VelClFile(VelClFilename(), nullptr) {
  useStringTable(table, size);
}

VelClMessageCatalog::~VelClMessageCatalog() {
  vel::destroy(library_);
}

// Intentional: callers find the process's locale set to the user's after every opening, even if no library is
// found. Texts of Unicode libraries are converted to that locale's code page.
void VelClMessageCatalog::open() {
  std::setlocale(LC_ALL, "");
  using vel::platform::CatalogOwner;
  auto library = vel::messages::CatalogLibrary::open(
      getAsCString(), default_ ? CatalogOwner::ThisLibrary : CatalogOwner::Other);
  if (library == nullptr) return;
  library_ = library.get();
  chooseLanguage();
  loaded_ = true;
  static_cast<void>(library.release());
}

/// Selects a language. Returns whether the library has the probe message in it.
bool VelClMessageCatalog::tryLanguage(uint32_t language) {
  const char* const noInserts[VEL_MAX_MESSAGE_VARIABLES] = {};
  char text[VEL_MAX_MESSAGE_LENGTH + 1];
  size_t length = 0;
  language_ = language;
  library_->useLanguage(language);
  return library_->expand(kProbeMessage, noInserts, text, sizeof text, length);
}

/// Chooses the user's language, or else the system's, if the library has the probe message in it; otherwise
/// US English, without a test: messages that are missing then say so themselves.
void VelClMessageCatalog::chooseLanguage() {
  languageFound_ = 1;
  for (const uint32_t language : preferredLanguages())
    if (tryLanguage(language)) return;
  tryLanguage(kEnglishUnitedStates);
  languageFound_ = 0;
}

bool VelClMessageCatalog::useLanguageFallback() {
  if (library_ == nullptr) return false;
  const uint32_t opened = language_;
  for (uint32_t language : preferredLanguages())
    for (; language != 0; language = velLanguageGetFallback(language))
      if (tryLanguage(language)) {
        languageFound_ = 1;
        return language != opened;
      }
  tryLanguage(opened);
  return false;
}

void VelClMessageCatalog::useStringTable(const char* const* table, unsigned long size) {
  stringTable_ = table;
  // Intentional: only the argument bounds the table. Callers may attach a part of a table, so the number in
  // its signature line is not read.
  stringTableSize_ = table != nullptr ? static_cast<uint32_t>(size) : 0;
}
