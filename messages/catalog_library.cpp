// Loads a catalog library and formats its messages. The system only finds the file; its bytes are parsed by
// the same code on every system, with portable_executable.cpp and message_resource.cpp.
//
// The library is never loaded as code, so nothing of a file that is not trusted can run.
#include "messages/catalog_library.h"

#include <utility>

#include "messages/insert_formatter.h"
#include "messages/resource_text.h"
#include "platform/byte_files.h"

namespace vel::messages {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (descriptor_ != -1) platform::closeDescriptor(descriptor_);
  }

  /// Reads the file. Returns no bytes when it is too large, cannot be read, or becomes shorter meanwhile.
  CatalogLibrary::FileBytes readAll() const {
    const std::uint64_t size = descriptor_ == -1 ? 0 : platform::bytesLeft(descriptor_);
    if (size == 0 || size > CatalogLibrary::kMostBytes) return {};
    CatalogLibrary::FileBytes bytes;
    bytes.data.reset(static_cast<std::uint8_t*>(VelClMemoryManager::malloc(static_cast<std::size_t>(size))));
    while (bytes.size < size) {
      const std::int64_t count = platform::readBytes(descriptor_, bytes.data.get() + bytes.size,
                                                     static_cast<std::size_t>(size) - bytes.size);
      if (count <= 0) return {};
      bytes.size += static_cast<std::size_t>(count);
    }
    return bytes;
  }

 private:
  int descriptor_;
};

}  // namespace

// Refuses what the system's loader would refuse, so that a catalog loads on all systems or on none.
CatalogLibrary::Owner CatalogLibrary::open(const char* fileName, platform::CatalogOwner owner) {
  FileBytes bytes = Descriptor(platform::openCatalog(fileName, owner)).readAll();
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
