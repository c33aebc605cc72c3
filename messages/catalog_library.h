// A loaded catalog library: owns the bytes of its file and looks up messages in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/allocator.h"
#include "messages/message_resource.h"
#include "messages/portable_executable.h"
#include "platform/catalogs.h"

namespace vel::messages {

class CatalogLibrary {
 public:
  using Owner = OwnedObject<CatalogLibrary>;

  /// The size in bytes of the largest file that is read.
  static constexpr std::size_t kMaxBytes = std::size_t{64} << 20;

  /// Returns null when the file is not found, is larger than kMaxBytes, or would be refused by the system's
  /// loader. Throws if the memory manager fails.
  static Owner open(const char* fileName, platform::CatalogOwner owner);

  /// The bytes of a file, in memory of the memory manager.
  struct FileBytes {
    std::unique_ptr<std::uint8_t[], FreeBlock> data;
    std::size_t size = 0;
  };

  explicit CatalogLibrary(FileBytes bytes) noexcept;
  CatalogLibrary(const CatalogLibrary&) = delete;
  CatalogLibrary& operator=(const CatalogLibrary&) = delete;

  /// Selects the message table that serves the language (see
  /// languageCandidates). Without one, expand() finds no message.
  void useLanguage(std::uint32_t language) noexcept;

  /// Writes the message with its ten inserts to `out`, NUL-terminated, and sets `length`. Returns false when
  /// it does not exist in the selected language, is empty, malformed, or does not fit into `capacity` bytes.
  bool expand(std::uint32_t id, const char* const* inserts, char* out, std::size_t capacity,
              std::size_t& length) const;

  const PortableExecutable& file() const noexcept { return file_; }

 private:
  /// A copy: the file may change or disappear while the catalog is in use.
  FileBytes bytes_;
  PortableExecutable file_;
  MessageResource messages_{nullptr, 0};
};

}  // namespace vel::messages
