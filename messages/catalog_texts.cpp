// Collects texts and lays them out as message tables. The library around the tables is written by
// catalog_image.cpp.
#include "messages/catalog_texts.h"

#include <algorithm>
#include <cstring>

#include "base/utf.h"

namespace vel::messages {
namespace {

/// An entry begins with its length in bytes and its flags, each of 16 bits.
constexpr std::size_t kEntryHeaderSize = 4;
constexpr std::uint16_t kUnicodeFlag = 1;
/// Entries are padded to a multiple of this.
constexpr std::size_t kEntryAlignment = 4;
constexpr std::size_t kMaxEntrySize = 0xFFFC;
constexpr std::size_t kMaxTextBytes = kMaxEntrySize - kEntryHeaderSize;

/// The number of blocks, and the fields of each: lowest id, highest id, and offset of the first entry.
constexpr std::size_t kTableHeaderSize = 4;
constexpr std::size_t kBlockSize = 12;

void put16(std::uint8_t* out, std::size_t value) noexcept {
  out[0] = static_cast<std::uint8_t>(value);
  out[1] = static_cast<std::uint8_t>(value >> 8);
}

std::uint8_t* putUtf16(std::uint8_t* out, char32_t character) noexcept {
  if (character < kFirstSupplementary) {
    put16(out, character);
    return out + 2;
  }
  put16(out, highSurrogateOf(character));
  put16(out + 2, lowSurrogateOf(character));
  return out + 4;
}

/// Converts to UTF-16. `out` has room for two bytes for each byte of the text. Returns the end of what was
/// written, or null for a text that is ill-formed or contains a NUL.
std::uint8_t* convert(const unsigned char* text, std::size_t size, std::uint8_t* out) noexcept {
  for (const unsigned char* const end = text + size; text != end;) {
    if (*text == 0) return nullptr;
    const Utf8Sequence sequence = utf8SequenceAt(text, static_cast<std::size_t>(end - text));
    if (!sequence.isValid) return nullptr;
    out = putUtf16(out, decodeUtf8(text, sequence.size));
    text += sequence.size;
  }
  return out;
}

}  // namespace

/// Appends an entry with room for a text and its NUL, all zeros, and returns its offset.
std::size_t CatalogTexts::begin(std::size_t textCapacity) {
  const std::size_t offset = entries_.size();
  // Reserving exactly what one text needs would copy all the others each time.
  const std::size_t needed = offset + kEntryHeaderSize + textCapacity + kEntryAlignment;
  if (needed > entries_.capacity()) entries_.reserve(std::max(needed, 2 * entries_.capacity()));
  entries_.resize(needed);
  return offset;
}

/// Completes the entry whose text, with its NUL, ends at `end`.
void CatalogTexts::finish(std::uint16_t language, std::uint32_t id, std::size_t offset, std::size_t end,
                          bool unicode) {
  const std::size_t size = (end - offset + kEntryAlignment - 1) / kEntryAlignment * kEntryAlignment;
  put16(&entries_[offset], size);
  put16(&entries_[offset + 2], unicode ? kUnicodeFlag : 0);
  entries_.resize(offset + size);
  records_.push_back({static_cast<std::uint64_t>(language) << 32 | id, offset});
}

CatalogTexts::Result CatalogTexts::addUtf8(std::uint16_t language, std::uint32_t id, const char* text,
                                           std::size_t size) {
  // A unit of UTF-16 needs at most three bytes in UTF-8, so this keeps out only what is too long.
  if (size > kMaxTextBytes / 2 * 3) return Result::TooLong;
  const std::size_t offset = begin(2 * (size + 1));
  const std::uint8_t* const end = convert(reinterpret_cast<const unsigned char*>(text), size,
                                          entries_.data() + offset + kEntryHeaderSize);
  const std::size_t endOffset = end == nullptr ? 0 : static_cast<std::size_t>(end - entries_.data()) + 2;
  if (end == nullptr || endOffset - offset > kMaxEntrySize) {
    entries_.resize(offset);
    return end == nullptr ? Result::IllFormed : Result::TooLong;
  }
  finish(language, id, offset, endOffset, true);
  return Result::Added;
}

CatalogTexts::Result CatalogTexts::addSingleBytes(std::uint16_t language, std::uint32_t id, const char* text,
                                                  std::size_t size) {
  if (size >= kMaxTextBytes) return Result::TooLong;
  if (size != 0 && std::memchr(text, '\0', size) != nullptr) return Result::IllFormed;
  const std::size_t offset = begin(size + 1);
  if (size != 0) std::memcpy(entries_.data() + offset + kEntryHeaderSize, text, size);
  finish(language, id, offset, offset + kEntryHeaderSize + size + 1, false);
  return Result::Added;
}

std::uint16_t CatalogTexts::entryLength(const Record& record) const noexcept {
  const std::uint8_t* const entry = entries_.data() + record.offset;
  return static_cast<std::uint16_t>(entry[0] | entry[1] << 8);
}

/// Whether the id of a record does not follow that of the record before in the same table.
bool CatalogTexts::startsBlock(const TableLayout& table, std::size_t record) const noexcept {
  return record == table.firstRecord || records_[record - 1].id() + 1 != records_[record].id();
}

Vector<TableLayout> CatalogTexts::layOut() {
  const auto precedes = [](const Record& a, const Record& b) {
    return a.key != b.key ? a.key < b.key : a.offset > b.offset;
  };
  if (!std::is_sorted(records_.begin(), records_.end(), precedes))
    std::sort(records_.begin(), records_.end(), precedes);
  // The latest text of each id comes first and stays.
  const auto isSame = [](const Record& a, const Record& b) { return a.key == b.key; };
  records_.erase(std::unique(records_.begin(), records_.end(), isSame), records_.end());

  Vector<TableLayout> tables;
  for (std::size_t i = 0; i < records_.size(); ++i) {
    const std::uint16_t language = records_[i].language();
    if (tables.empty() || tables.back().language != language)
      tables.push_back({language, i, i, 0, kTableHeaderSize});
    TableLayout& table = tables.back();
    table.endRecord = i + 1;
    if (startsBlock(table, i)) {
      ++table.blockCount;
      table.sizeInBytes += kBlockSize;
    }
    table.sizeInBytes += entryLength(records_[i]);
  }
  return tables;
}

void CatalogTexts::write(const TableLayout& table, ByteWriter& out) const {
  std::size_t entryOffset = kTableHeaderSize + kBlockSize * table.blockCount;
  out.add32(table.blockCount);
  for (std::size_t i = table.firstRecord; i < table.endRecord;) {
    const std::size_t first = i;
    const std::size_t firstOffset = entryOffset;
    do {
      entryOffset += entryLength(records_[i++]);
    } while (i < table.endRecord && !startsBlock(table, i));
    out.add32(records_[first].id());
    out.add32(records_[i - 1].id());
    out.add32(firstOffset);
  }
  for (std::size_t i = table.firstRecord; i < table.endRecord; ++i)
    out.add(entries_.data() + records_[i].offset, entryLength(records_[i]));
}

}  // namespace vel::messages
