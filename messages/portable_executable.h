// The message tables of a Windows library, read straight from the bytes of its file,
// for systems whose loader knows nothing of them. What a table holds is read by message_resource.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "messages/byte_view.h"

namespace vel::messages {

/// A message table resource; the bytes belong to whoever holds the file's image.
struct MessageTable {
  std::uint32_t nameId;    ///< number of the resource; the system's formatter reads number 1 only
  std::uint32_t language;  ///< Windows language number of its texts
  const std::uint8_t* data;
  std::size_t sizeInBytes;
};

/// A view of a library file (32- or 64-bit), in the layout on disk. It does not own the bytes,
/// which may be anything: nothing outside of them is read, and walking the tables and all their
/// messages takes time linear in their number.
///
/// Resources are a tree of three levels, type, number and language:
///
///     type 11 --- 1 --+-- 1033 --> {address, size} --> message table
///                     +-- 1031 --> {address, size} --> message table
class PortableExecutable {
 public:
  /// The number that the message compiler gives its table.
  static constexpr std::uint32_t kMessageTableName = 1;

  /// A place in the walk; default-constructed it stands before the first table.
  struct Cursor {
    std::uint32_t name = 0;        ///< index in the directory of numbers
    std::uint32_t language = 0;    ///< index in that number's directory of languages
    std::uint64_t visited = 0;     ///< directory entries read so far
    std::uint64_t tableBytes = 0;  ///< bytes of all tables so far
  };

  PortableExecutable(const std::uint8_t* image, std::size_t sizeInBytes) noexcept;

  /// Whether the system's loader would map the file: its headers are sound and all of its sections' bytes are
  /// there. It may be for any machine and need not have message tables.
  bool isValid() const noexcept { return valid_; }

  /// Of the file, in bytes.
  std::size_t size() const noexcept { return file_.size(); }

  /// Moves to the next message table in the file's order (numbers, then languages, ascending);
  /// false at the end. Resources named by text and damaged ones are left out.
  bool nextMessageTable(Cursor& cursor, MessageTable& table) const noexcept;

  /// The table that serves requests in a language, chosen among those numbered kMessageTableName
  /// by languageCandidates(); false when the file has none for it.
  bool findMessageTable(std::uint32_t language, MessageTable& table) const noexcept;

 private:
  /// Where a section lies in the file and in memory.
  struct Section {
    std::uint32_t virtualSize;
    std::uint32_t virtualAddress;
    std::uint32_t sizeOfRawData;
    std::uint32_t pointerToRawData;
  };
  /// The fields of the optional header that matter here.
  struct OptionalHeader {
    std::uint32_t sizeOfImage;
    std::uint32_t sizeOfHeaders;
    std::uint32_t resourceRva;  ///< 0 in a file without resources
  };
  struct DirectoryEntry {
    std::uint32_t name;
    std::uint32_t offset;
  };

  bool readHeaders() noexcept;
  bool readOptionalHeader(std::uint64_t offset, std::uint16_t size, OptionalHeader& header) const noexcept;
  bool hasValidSections(const OptionalHeader& header) const noexcept;
  bool readSection(std::uint32_t index, Section& section) const noexcept;
  bool rvaToFileOffset(std::uint32_t rva, std::uint32_t size, std::uint64_t& fileOffset) const noexcept;
  std::uint32_t entryCount(std::uint64_t directory) const noexcept;
  bool readEntry(std::uint64_t directory, std::uint32_t index, DirectoryEntry& entry) const noexcept;
  bool findSubdirectory(const DirectoryEntry& entry, std::uint64_t& directory) const noexcept;
  void findMessageTables() noexcept;
  bool nextLanguage(Cursor& cursor, const DirectoryEntry& name, MessageTable& table) const noexcept;
  bool readTable(const DirectoryEntry& language, MessageTable& table) const noexcept;
  bool countVisit(Cursor& cursor) const noexcept;

  ByteView file_;
  std::uint64_t sectionTable_ = 0;
  std::uint32_t sectionCount_ = 0;
  std::uint64_t resources_ = 0;      ///< file offset of the resource tree, 0 without one
  std::uint64_t messageTables_ = 0;  ///< file offset of type 11's directory, 0 without one
  bool valid_ = false;
};

}  // namespace vel::messages
