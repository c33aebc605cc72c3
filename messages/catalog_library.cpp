// A loaded catalog library. The system finds the file; it is read and its texts are formatted here, by the
// same code on every system.
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

  /// Empty when the file is too large, or changes while it is read.
  Vector<std::uint8_t> readAll() const {
    Vector<std::uint8_t> bytes;
    const std::uint64_t size = descriptor_ == -1 ? 0 : platform::bytesLeft(descriptor_);
    if (size > CatalogLibrary::kMostBytes) return bytes;
    bytes.resize(static_cast<std::size_t>(size));
    for (std::size_t done = 0; done < bytes.size();) {
      const std::int64_t count = platform::readBytes(descriptor_, bytes.data() + done, bytes.size() - done);
      if (count <= 0) return {};
      done += static_cast<std::size_t>(count);
    }
    return bytes;
  }

 private:
  int descriptor_;
};

}  // namespace

CatalogLibrary::Owner CatalogLibrary::open(const char* fileName, platform::CatalogOwner owner) {
  Vector<std::uint8_t> bytes = Descriptor(platform::openCatalog(fileName, owner)).readAll();
  if (!PortableExecutable(bytes.data(), bytes.size()).isValid()) return nullptr;
  return Owner(create<CatalogLibrary>(std::move(bytes)));
}

CatalogLibrary::CatalogLibrary(Vector<std::uint8_t> bytes) noexcept
    : bytes_(std::move(bytes)), file_(bytes_.data(), bytes_.size()) {}

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
