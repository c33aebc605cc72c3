// Finds the message tables of a Windows library in the bytes of its file, so that catalogs work on systems
// whose loader does not know the format. The contents of a table are parsed by message_resource.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "messages/byte_view.h"

namespace vel::messages {

/// A message table resource. It points into the file's bytes and does not own them.
struct MessageTable {
  std::uint32_t id;        ///< the resource ID; the Windows message formatter reads kMessageTableId only
  std::uint32_t language;  ///< LANGID of its texts
  const std::uint8_t* data;
  std::size_t sizeInBytes;
};

/// A view of a library file (32-bit or 64-bit PE), in its layout on disk. Does not own the bytes. Any
/// bytes are accepted: nothing outside of them is read, and the time of walking the tables and all of their
/// messages is linear in the number of bytes.
///
/// Resources are a tree of three levels, type, ID and language:
///
///     type 11 --- 1 --+-- 1033 --> {address, size} --> message table
///                     +-- 1031 --> {address, size} --> message table
class PortableExecutable {
 public:
  /// The resource ID that the message compiler gives to its table.
  static constexpr std::uint32_t kMessageTableId = 1;

  /// A position in the walk, initially before the first table.
  struct Cursor {
    std::uint32_t idIndex = 0;        ///< in the directory of resource IDs
    std::uint32_t languageIndex = 0;  ///< in the directory of that resource's languages
    std::uint64_t visited = 0;        ///< directory entries read so far
    std::uint64_t tableBytes = 0;     ///< total size in bytes of the tables so far
  };

  PortableExecutable(const std::uint8_t* image, std::size_t sizeInBytes) noexcept;

  /// Whether the Windows loader would map the file: its headers are valid, and the initialized bytes of
  /// all sections are in the file. The file may be for any machine and need not have message tables.
  bool isValid() const noexcept { return valid_; }

  /// The size of the file in bytes.
  std::size_t size() const noexcept { return file_.size(); }

  /// Moves to the next message table in file order (by ID, then by language, in a valid file); returns false
  /// at the end. Skips resources that have a name instead of an ID, and damaged ones.
  bool nextMessageTable(Cursor& cursor, MessageTable& table) const noexcept;

  /// Finds the table with the ID kMessageTableId whose language is the first possible one of
  /// languageCandidates(). Returns false if the file does not contain one.
  bool findMessageTable(std::uint32_t language, MessageTable& table) const noexcept;

 private:
  /// Position and size of a section in memory (virtual) and in the file (raw).
  struct Section {
    std::uint32_t virtualSize;
    std::uint32_t virtualAddress;
    std::uint32_t sizeOfRawData;
    std::uint32_t pointerToRawData;
  };
  /// The fields of the optional header that are used here.
  struct OptionalHeader {
    std::uint32_t sizeOfImage;
    std::uint32_t sizeOfHeaders;
    std::uint32_t resourceRva;  ///< of the resource tree; 0 in a file without resources
  };
  /// An entry of a directory in the resource tree.
  struct DirectoryEntry {
    std::uint32_t id;      ///< type, resource ID or LANGID; with kHighBit, the offset of a name
    std::uint32_t offset;  ///< in the tree; with kHighBit, of a directory, otherwise of a data entry
  };

  bool readHeaders() noexcept;
  bool readOptionalHeader(std::uint64_t offset, std::uint16_t size, OptionalHeader& header) const noexcept;
  bool hasValidSections(const OptionalHeader& header) const noexcept;
  Section sectionAt(std::uint32_t index) const noexcept;
  bool rvaToFileOffset(std::uint32_t rva, std::uint32_t size, std::uint64_t& fileOffset) const noexcept;
  std::uint32_t entryCount(std::uint64_t directory) const noexcept;
  bool readEntry(std::uint64_t directory, std::uint32_t index, DirectoryEntry& entry) const noexcept;
  bool findSubdirectory(const DirectoryEntry& entry, std::uint64_t& directory) const noexcept;
  void findMessageTableDirectory() noexcept;
  bool nextLanguage(Cursor& cursor, const DirectoryEntry& resource, MessageTable& table) const noexcept;
  bool readDataEntry(const DirectoryEntry& language, MessageTable& table) const noexcept;
  bool mayVisitAnother(Cursor& cursor) const noexcept;

  ByteView file_;
  std::uint64_t sectionTable_ = 0;
  std::uint32_t sectionCount_ = 0;
  std::uint64_t resources_ = 0;      ///< file offset of the resource tree; 0 without resources
  std::uint64_t messageTables_ = 0;  ///< file offset of the directory of type 11; 0 without message tables
  bool valid_ = false;
};

}  // namespace vel::messages
