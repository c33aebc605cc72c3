// Parses one message table: looks up a message by id and walks all of them. The table is a
// MESSAGE_RESOURCE_DATA of the Windows headers, with its MESSAGE_RESOURCE_BLOCKs and MESSAGE_RESOURCE_ENTRYs:
//
//   count | low 1, high 3, offset --+ | low 10, high 11, offset --+ | ...
//                                   |                             |
//                 +-----------------+            +----------------+
//                 entry 1 | entry 2 | entry 3    entry 10 | entry 11      entry: length, flags, text
//
// Entries have different lengths, so finding an id means stepping over the entries before it in its block.
// Every length and offset is read from a file and checked before it is used: an entry that is too short, or
// not wholly within the table, ends the search in its block.
#include "messages/message_resource.h"

#include <algorithm>
#include <cstring>

namespace vel::messages {
namespace {

constexpr std::uint64_t kCountSize = 4;
constexpr std::uint64_t kBlockSize = 12;
constexpr std::uint16_t kEntryHeaderSize = 4;
constexpr std::uint16_t kUnicodeFlag = 1;

constexpr std::uint32_t kLanguageMask = 0xFFFF;
constexpr std::uint32_t kPrimaryLanguageMask = 0x3FF;

/// Whether one of four 16-bit units is zero. Subtracting 1 from each sets the highest bit of a unit
/// that had it clear only if the unit, or one below it, was zero (the zero-byte test of S. E.
/// Anderson, Bit Twiddling Hacks, for units).
bool hasZeroUnit(std::uint64_t units) noexcept {
  return ((units - 0x0001000100010001) & ~units & 0x8000800080008000) != 0;
}

/// Returns the size in bytes of the text before its first NUL byte.
std::size_t byteTextSize(const std::uint8_t* text, std::size_t size) noexcept {
  return static_cast<std::size_t>(std::find(text, text + size, 0) - text);
}

/// Returns the size in bytes of the text before its first NUL unit of
/// two bytes. An odd last byte is left out.
std::size_t unicodeTextSize(const std::uint8_t* text, std::size_t size) noexcept {
  std::size_t end = 0;
  for (std::uint64_t units = 0; end + sizeof units <= size; end += sizeof units) {
    std::memcpy(&units, text + end, sizeof units);
    if (hasZeroUnit(units)) break;
  }
  while (end + 2 <= size && (text[end] | text[end + 1]) != 0) end += 2;
  return end;
}

}  // namespace

std::array<std::uint32_t, 3> languageCandidates(std::uint32_t language) noexcept {
  return {language & kLanguageMask, language & kPrimaryLanguageMask, 0};
}

MessageResource::MessageResource(const std::uint8_t* data, std::size_t sizeInBytes) noexcept
    : bytes_(data, sizeInBytes) {
  bytes_.read32(0, blockCount_);
}

bool MessageResource::readBlock(std::uint32_t index, Block& block) const noexcept {
  const std::uint64_t offset = kCountSize + index * kBlockSize;
  return bytes_.read32(offset, block.lowId) && bytes_.read32(offset + 4, block.highId) &&
         bytes_.read32(offset + 8, block.offset);
}

/// Returns the length of the entry at `offset`, header included, or 0 if the entry is not valid.
std::uint16_t MessageResource::entryLength(std::uint64_t offset) const noexcept {
  std::uint16_t length = 0;
  if (!bytes_.read16(offset, length)) return 0;
  return length >= kEntryHeaderSize && bytes_.holds(offset, length) ? length : std::uint16_t{0};
}

/// The caller has checked with entryLength() that the entry is valid.
MessageResource::Entry MessageResource::entryAt(std::uint32_t id, std::uint64_t offset) const noexcept {
  std::uint16_t flags = 0;
  bytes_.read16(offset + 2, flags);
  const bool unicode = (flags & kUnicodeFlag) != 0;
  const std::uint8_t* text = bytes_.at(offset + kEntryHeaderSize);
  const std::size_t room = entryLength(offset) - std::size_t{kEntryHeaderSize};
  return {id, unicode, text, unicode ? unicodeTextSize(text, room) : byteTextSize(text, room)};
}

// Not a binary search: blocks of a crafted file need not be sorted, and tables have few of them.
bool MessageResource::find(std::uint32_t id, Entry& entry) const noexcept {
  Block block{};
  for (std::uint32_t index = 0; index < blockCount_ && readBlock(index, block); ++index)
    if (block.lowId <= id && id <= block.highId) return findInBlock(block, id, entry);
  return false;
}

bool MessageResource::findInBlock(const Block& block, std::uint32_t id, Entry& entry) const noexcept {
  std::uint64_t offset = block.offset;
  // Terminates: every valid entry is at least as long as its header, so the offset soon leaves the table.
  for (std::uint64_t current = block.lowId;; ++current) {
    const std::uint16_t length = entryLength(offset);
    if (length == 0) return false;
    if (current == id) break;
    offset += length;
  }
  entry = entryAt(id, offset);
  return true;
}

bool MessageResource::next(Cursor& cursor, Entry& entry) const noexcept {
  Block block{};
  for (; cursor.block < blockCount_ && readBlock(cursor.block, block); ++cursor.block) {
    // Skip a block whose ids have been passed already: it is out of order.
    if (cursor.offset == 0 && cursor.nextId <= block.lowId) {
      cursor.nextId = block.lowId;
      cursor.offset = block.offset;
    }
    if (cursor.offset != 0 && nextInBlock(cursor, block, entry)) return true;
    cursor.offset = 0;
  }
  return false;
}

bool MessageResource::nextInBlock(Cursor& cursor, const Block& block, Entry& entry) const noexcept {
  if (cursor.nextId > block.highId) return false;
  const std::uint16_t length = entryLength(cursor.offset);
  // Entries of a valid table do not overlap, so their total length is at most that of the table. Without this
  // limit many blocks that point to the same bytes would make the walk quadratic.
  if (length == 0 || cursor.consumed + length > bytes_.size()) return false;
  entry = entryAt(static_cast<std::uint32_t>(cursor.nextId), cursor.offset);
  ++cursor.nextId;
  cursor.offset += length;
  cursor.consumed += length;
  return true;
}

}  // namespace vel::messages
