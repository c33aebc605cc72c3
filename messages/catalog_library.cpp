// Loads a catalog library and formats its messages. The system only finds the file; its bytes are parsed by
// the same code on every system, with portable_executable.cpp and message_resource.cpp.
//
// The library is never loaded as code, so nothing of a file that is not trusted can run.
#include "messages/catalog_library.h"

#include <utility>

#include "messages/insert_formatter.h"
#include "messages/resource_text.h"
#include "platform/byte_files.h"
#include "platform/catalogs.h"

namespace vel::messages {
namespace {

/// Reads a whole file. Returns no bytes if it is too large, cannot be read, or becomes shorter meanwhile.
CatalogLibrary::FileBytes readAll(int descriptor) {
  const std::uint64_t size = platform::bytesLeft(descriptor);
  if (size == 0 || size > CatalogLibrary::kMaxBytes) return {};
  CatalogLibrary::FileBytes bytes;
  bytes.data.reset(static_cast<std::uint8_t*>(VelClMemoryManager::malloc(static_cast<std::size_t>(size))));
  while (bytes.size < size) {
    std::size_t count = 0;
    const auto left = static_cast<std::size_t>(size) - bytes.size;
    if (platform::readBytes(descriptor, bytes.data.get() + bytes.size, left, count) != 0 || count == 0)
      return {};
    bytes.size += count;
  }
  return bytes;
}

}  // namespace

// Refuses what the system's loader would refuse, so that a catalog loads on all systems or on none.
CatalogLibrary::Owner CatalogLibrary::open(const char* fileName, platform::CatalogOwner owner) {
  int descriptor = -1;
  if (platform::openCatalog(fileName, owner, descriptor) != 0) return nullptr;
  const platform::ReadableFile file(descriptor);
  FileBytes bytes = readAll(file.descriptor());
  if (!PortableExecutable(bytes.data.get(), bytes.size).isValid()) return nullptr;
  return Owner(create<CatalogLibrary>(std::move(bytes)));
}

CatalogLibrary::CatalogLibrary(FileBytes bytes) noexcept
    : bytes_(std::move(bytes)), file_(bytes_.data.get(), bytes_.size) {}

void CatalogLibrary::useLanguage(std::uint32_t language) noexcept {
  MessageTable table{};
  messages_ = file_.findMessageTable(language, table) ? MessageResource(table.data, table.sizeInBytes)
                                                      : MessageResource(nullptr, 0);
}

// Intentional: a message that expands to nothing counts as missing; callers then get the text that says so.
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
