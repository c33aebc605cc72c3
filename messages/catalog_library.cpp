// A loaded catalog library. The system finds the file; its texts are read and formatted here, by the same
// code on every system.
#include "messages/catalog_library.h"

#include "messages/insert_formatter.h"
#include "messages/resource_text.h"

namespace vel::messages {
namespace {

/// Closes an image that no library has taken over.
struct ImageGuard {
  platform::CatalogImage image{};
  bool open = false;

  ImageGuard() = default;
  ImageGuard(const ImageGuard&) = delete;
  ImageGuard& operator=(const ImageGuard&) = delete;
  ~ImageGuard() {
    if (open) platform::closeCatalog(image);
  }
};

}  // namespace

CatalogLibrary::Owner CatalogLibrary::open(const char* fileName) {
  ImageGuard guard;
  guard.open = platform::openCatalog(fileName, guard.image);
  if (!guard.open || !PortableExecutable(guard.image.data, guard.image.sizeInBytes).isValid()) return nullptr;
  Owner library(create<CatalogLibrary>(guard.image));
  guard.open = false;
  return library;
}

CatalogLibrary::CatalogLibrary(const platform::CatalogImage& image) noexcept
    : image_(image), file_(image.data, image.sizeInBytes) {}

CatalogLibrary::~CatalogLibrary() {
  platform::closeCatalog(image_);
}

void CatalogLibrary::useLanguage(std::uint32_t language) noexcept {
  MessageTable table{};
  messages_ = file_.findMessageTable(language, table) ? MessageResource(table.data, table.sizeInBytes)
                                                      : MessageResource(nullptr, 0);
}

bool CatalogLibrary::expand(std::uint32_t id, const char* const* inserts, char* out, std::size_t capacity,
                            std::size_t& length) const {
  MessageResource::Entry entry{};
  if (!messages_.find(id, entry)) return false;
  const AnsiText text(entry);
  const FormatResult result = expandResourceText(text.data(), text.size(), inserts, out, capacity);
  length = result.length;
  return result.complete && result.length > 0;
}

}  // namespace vel::messages
