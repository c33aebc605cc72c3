// Collects the texts of a catalog and lays them out as message tables, the format that message_resource.h
// reads.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/allocator.h"
#include "messages/byte_writer.h"

namespace vel::messages {

/// The table of one language: the range of its records, and its size.
struct TableLayout {
  std::uint16_t language;
  std::size_t firstRecord;
  std::size_t endRecord;
  std::uint32_t blockCount;  ///< of runs of consecutive ids
  std::uint64_t sizeInBytes;
};

class CatalogTexts {
 public:
  enum class Result {
    Added,
    IllFormed,  ///< not well-formed UTF-8, or with a NUL, which would end the text
    TooLong     ///< for an entry, whose length has 16 bits
  };

  /// Adds a text, which replaces an earlier one of the same language and id. UTF-8 is stored as UTF-16,
  /// single bytes are stored as they are.
  Result addUtf8(std::uint16_t language, std::uint32_t id, const char* text, std::size_t size);
  Result addSingleBytes(std::uint16_t language, std::uint32_t id, const char* text, std::size_t size);

  /// Returns the tables in the order of their languages. They are valid until the next text is added.
  Vector<TableLayout> layOut();
  void write(const TableLayout& table, ByteWriter& out) const;

 private:
  /// The entry of a text, which lies in entries_ as the file will contain it.
  struct Record {
    std::uint64_t key;     ///< the language in the high 32 bits, the id in the low ones
    std::uint64_t offset;  ///< of the entry; a later text has a greater one

    std::uint32_t id() const noexcept { return static_cast<std::uint32_t>(key); }
    std::uint16_t language() const noexcept { return static_cast<std::uint16_t>(key >> 32); }
  };

  std::size_t begin(std::size_t textCapacity);
  void finish(std::uint16_t language, std::uint32_t id, std::size_t offset, std::size_t end, bool unicode);
  std::uint16_t entryLength(const Record& record) const noexcept;
  bool startsBlock(const TableLayout& table, std::size_t record) const noexcept;

  Vector<std::uint8_t> entries_;
  Vector<Record> records_;
};

}  // namespace vel::messages
