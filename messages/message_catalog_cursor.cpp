// Lists every message of a catalog as it is stored, without expanding inserts.
//
// A library keeps its messages by language and then by id, and a file may list them in any order; callers get
// them by id and then by language. So the cursor collects the positions of all entries once, counting first
// and then filling an array of that size, and sorts them. Texts are converted one at a time, when the cursor
// reaches them. A string table is in order already and needs no positions.
#include <algorithm>
#include <tuple>

#include "base/short_text.h"
#include "messages/catalog_library.h"
#include "messages/message_resource.h"
#include "messages/resource_text.h"
#include "vel_include/vel_messages.h"

using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;

/// The position of an entry in the library's bytes. Kept small,
/// because a file may have an entry every 4 bytes.
struct VelClMessageCatalogCursor::Position {
  const uint8_t* text;
  uint32_t id;
  uint32_t language;
  uint16_t sizeInBytes;
  bool unicode;

  MessageResource::Entry entry() const { return {id, unicode, text, sizeInBytes}; }
};

namespace {

/// Bounds the cost of listing one file, in bytes of its entries and of their positions. A valid file may list
/// its entries several times, since languages may share a table. A crafted file can have thousands of
/// languages share the same bytes, which would fill the memory; its list ends when the budget is spent.
class Budget {
 public:
  explicit Budget(std::uint64_t sizeOfFile) : left_(4 * sizeOfFile + kBaseAllowance) {}

  /// Deducts the cost of an entry; returns false if the budget does not cover it.
  bool spend(const MessageResource::Entry& entry) {
    const std::uint64_t cost = kCostOfPosition + entry.sizeInBytes;
    if (cost > left_) return false;
    left_ -= cost;
    return true;
  }

 private:
  static constexpr std::uint64_t kCostOfPosition = 16;
  static constexpr std::uint64_t kBaseAllowance = std::uint64_t{1} << 20;

  std::uint64_t left_;
};

/// Calls `visit` with each entry of the file and its language, until the budget is
/// spent. Visits the same entries each time.
template <typename Visitor>
void forEachEntry(const PortableExecutable& file, Visitor visit) {
  Budget budget(file.size());
  PortableExecutable::Cursor tables;
  MessageTable table{};
  while (file.nextMessageTable(tables, table)) {
    if (table.id != PortableExecutable::kMessageTableId) continue;
    const MessageResource resource(table.data, table.sizeInBytes);
    MessageResource::Cursor entries;
    MessageResource::Entry entry{};
    while (resource.next(entries, entry)) {
      if (!budget.spend(entry)) return;
      visit(entry, table.language);
    }
  }
}

}  // namespace

VelClMessageCatalogCursor::VelClMessageCatalogCursor(const VelClMessageCatalog& catalog)
    : catalog_(catalog), positions_(nullptr), count_(0), index_(0), text_(nullptr) {
  if (catalog_.isValid())
    listLibrary();
  else if (catalog_.hasValidStringTable())
    listTable();
}

VelClMessageCatalogCursor::~VelClMessageCatalogCursor() {
  VelClMemoryManager::free(positions_);
  VelClMemoryManager::free(text_);
}

/// Entry 0 of a table is its signature line, not a message, so the first position is entry 1.
void VelClMessageCatalogCursor::listTable() {
  if (catalog_.stringTableSize_ < 2) return;
  count_ = catalog_.stringTableSize_ - 1;
  index_ = count_;
}

void VelClMessageCatalogCursor::listLibrary() {
  const PortableExecutable& file = catalog_.library_->file();
  forEachEntry(file, [this](const MessageResource::Entry&, uint32_t) { ++count_; });
  index_ = count_;
  if (count_ == 0) return;
  positions_ = static_cast<Position*>(VelClMemoryManager::calloc(count_, sizeof(Position)));
  Position* next = positions_;
  forEachEntry(file, [&next](const MessageResource::Entry& entry, uint32_t language) {
    // The file has 16 bits for an entry's size, so it fits.
    *next++ = {entry.text, entry.id, language, static_cast<uint16_t>(entry.sizeInBytes), entry.unicode};
  });
  std::sort(positions_, positions_ + count_, [](const Position& a, const Position& b) {
    return std::tie(a.id, a.language) < std::tie(b.id, b.language);
  });
}

bool VelClMessageCatalogCursor::isValid() const {
  return index_ < count_;
}
bool VelClMessageCatalogCursor::setToFirst() {
  return moveTo(0);
}
bool VelClMessageCatalogCursor::setToNext() {
  return moveTo(isValid() ? index_ + 1 : count_);
}

/// Moves to a position and makes a NUL-terminated copy of a library's text. If the memory manager throws, the
/// cursor stays where it was.
bool VelClMessageCatalogCursor::moveTo(size_t index) {
  vel::OwnedText copy;
  if (index < count_ && positions_ != nullptr) {
    const vel::String text = vel::messages::storedOrUtf8Text(positions_[index].entry());
    copy = vel::copyText(text.data(), text.size());
  }
  VelClMemoryManager::free(text_);
  text_ = copy.release();
  index_ = index;
  return isValid();
}

unsigned long VelClMessageCatalogCursor::getId() const {
  if (!isValid()) return 0;
  return positions_ != nullptr ? positions_[index_].id : static_cast<uint32_t>(index_ + 1);
}

unsigned int VelClMessageCatalogCursor::getLanguage() const {
  return isValid() && positions_ != nullptr ? positions_[index_].language : 0;
}

const char* VelClMessageCatalogCursor::getAsCString() const {
  if (!isValid()) return "";
  if (positions_ != nullptr) return text_;
  // The catalog may have been given a shorter table since the cursor was made.
  const size_t id = index_ + 1;
  return vel::textOrEmpty(id < catalog_.stringTableSize_ ? catalog_.stringTable_[id] : nullptr);
}
