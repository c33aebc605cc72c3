// A loaded catalog library: its file's bytes, and the messages in them.
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

  /// The largest file that is read.
  static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

  /// Null when the file is not found, is larger than that, or is none that the system's loader would take.
  static Owner open(const char* fileName, platform::CatalogOwner owner);

  /// The bytes of a file, in managed memory.
  struct FileBytes {
    std::unique_ptr<std::uint8_t[], FreeBlock> data;
    std::size_t size = 0;
  };

  explicit CatalogLibrary(FileBytes bytes) noexcept;
  CatalogLibrary(const CatalogLibrary&) = delete;
  CatalogLibrary& operator=(const CatalogLibrary&) = delete;

  /// From now on messages come from the table that serves the language; none do where none serves it.
  void useLanguage(std::uint32_t language) noexcept;

  /// Writes the message with its ten inserts into `out`; false when it does not exist in the language in use,
  /// is empty, or does not fit.
  bool expand(std::uint32_t id, const char* const* inserts, char* out, std::size_t capacity,
              std::size_t& length) const;

  const PortableExecutable& file() const noexcept { return file_; }

 private:
  /// A copy, so that it does not matter what becomes of the file.
  FileBytes bytes_;
  PortableExecutable file_;
  MessageResource messages_{nullptr, 0};
};

}  // namespace vel::messages
