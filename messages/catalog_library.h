// A loaded catalog library: its file's bytes, and the messages in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/allocator.h"
#include "messages/message_resource.h"
#include "messages/portable_executable.h"
#include "platform/platform.h"

namespace vel::messages {

class CatalogLibrary {
 public:
  struct Close {
    void operator()(CatalogLibrary* library) const noexcept { destroy(library); }
  };
  using Owner = std::unique_ptr<CatalogLibrary, Close>;

  /// Null when the system's loader does not find the file or does not take it.
  static Owner open(const char* fileName);

  /// Takes over the image.
  explicit CatalogLibrary(const platform::CatalogImage& image) noexcept;
  CatalogLibrary(const CatalogLibrary&) = delete;
  CatalogLibrary& operator=(const CatalogLibrary&) = delete;
  ~CatalogLibrary();

  /// From now on messages come from the table that serves the language; none do where none serves it.
  void useLanguage(std::uint32_t language) noexcept;

  /// Writes the message with its ten inserts into `out`; false when it does not exist in the language in use,
  /// is empty, or does not fit.
  bool expand(std::uint32_t id, const char* const* inserts, char* out, std::size_t capacity,
              std::size_t& length) const;

  const PortableExecutable& file() const noexcept { return file_; }

 private:
  platform::CatalogImage image_;
  PortableExecutable file_;
  MessageResource messages_{nullptr, 0};
};

}  // namespace vel::messages
