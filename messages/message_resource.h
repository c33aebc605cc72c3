// Parses one message table of a catalog library: the texts of one language by message id, in the layout of
// the message compiler. Finding the table in the library is the work of portable_executable.h, expanding its
// texts that of insert_formatter.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "messages/byte_view.h"

namespace vel::messages {

/// Returns the languages whose tables serve a request in `language`, best first: the language itself, its
/// primary language without a territory, and neutral (0). Use the first table that exists, even for messages
/// that it does not contain: the others are not searched.
std::array<std::uint32_t, 3> languageCandidates(std::uint32_t language) noexcept;

/// A message table. Layout: the number of blocks; then for each block {lowest id, highest id, offset of the
/// lowest id's entry}, all of 32 bits. The entries of a block follow one another, each {16-bit length
/// including this header, 16-bit flags, text}. Ids ascend.
///
/// Does not own the bytes. Any bytes are accepted: nothing outside of them is read, and the time of find()
/// and of a whole walk is linear in the number of bytes.
class MessageResource {
 public:
  struct Entry {
    std::uint32_t id;
    bool unicode;              ///< UTF-16, little-endian; otherwise single bytes
    const std::uint8_t* text;  ///< points into the table; neither NUL-terminated nor aligned
    std::size_t sizeInBytes;   ///< of the text before its first NUL; even if unicode
  };

  /// A position in the walk, initially before the first entry.
  struct Cursor {
    std::uint32_t block = 0;     ///< index of the block being walked
    std::uint64_t nextId = 0;    ///< all smaller ids have been passed
    std::uint64_t offset = 0;    ///< of the entry of nextId; 0 between blocks
    std::uint64_t consumed = 0;  ///< total size in bytes of the entries so far
  };

  MessageResource(const std::uint8_t* data, std::size_t sizeInBytes) noexcept;

  /// Looks a message up. Returns false and leaves `entry` unchanged if the table does not contain it or its
  /// entry is damaged.
  bool find(std::uint32_t id, Entry& entry) const noexcept;

  /// Moves to the next entry in the order of ids; returns false at the end. Skips blocks that are out of
  /// order, and the rest of a block from a damaged entry on.
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
