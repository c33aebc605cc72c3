// One message table of a catalog library: the texts of one language, keyed by message id,
// as the message compiler lays them out. Finding the table in a library is the work of
// portable_executable.h (or of the system), expanding its texts that of insert_formatter.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "messages/byte_view.h"

namespace vel::messages {

/// The languages of the tables that may serve a request in `language`, best first: that very
/// language, its primary language without a territory, no language at all. The first table that
/// exists is taken; when that one lacks a message, the others are not asked.
std::array<std::uint32_t, 3> languageCandidates(std::uint32_t language) noexcept;

/// Layout: a count of blocks, then per block {lowest id, highest id, offset of the lowest id's
/// entry}, all 32-bit; the entries of a block follow each other, each {16-bit length with this
/// header, 16-bit flags, text}. Ids ascend.
///
/// The view does not own the bytes. They may be anything: nothing outside of them is read, and a
/// search or a whole walk takes time linear in their number.
class MessageResource {
 public:
  struct Entry {
    std::uint32_t id;
    bool unicode;              ///< UTF-16, little-endian; otherwise single bytes
    const std::uint8_t* text;  ///< points into the resource, not terminated, not aligned
    std::size_t sizeInBytes;   ///< up to the first zero character; even when unicode
  };

  /// A place in the walk; default-constructed it stands before the first entry.
  struct Cursor {
    std::uint32_t block = 0;     ///< index of the block being walked
    std::uint64_t nextId = 0;    ///< every smaller id has been passed
    std::uint64_t offset = 0;    ///< of the entry of nextId, 0 outside of a block
    std::uint64_t consumed = 0;  ///< bytes of all entries so far
  };

  MessageResource(const std::uint8_t* data, std::size_t sizeInBytes) noexcept;

  /// Looks a message up; false when there is none (`entry` is left alone then).
  bool find(std::uint32_t id, Entry& entry) const noexcept;

  /// Moves to the next entry in id order; false at the end. Blocks out of order are left out, and
  /// so is the rest of a block behind a damaged entry.
  bool next(Cursor& cursor, Entry& entry) const noexcept;

 private:
  struct Block {
    std::uint32_t lowId;
    std::uint32_t highId;
    std::uint32_t offset;
  };

  bool readBlock(std::uint32_t index, Block& block) const noexcept;
  std::uint16_t entryLength(std::uint64_t offset) const noexcept;
  Entry entryAt(std::uint32_t id, std::uint64_t offset) const noexcept;
  bool findInBlock(const Block& block, std::uint32_t id, Entry& entry) const noexcept;
  bool nextInBlock(Cursor& cursor, const Block& block, Entry& entry) const noexcept;

  ByteView bytes_;
  std::uint32_t blockCount_ = 0;
};

}  // namespace vel::messages
