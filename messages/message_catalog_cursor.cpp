// Lists every message of a catalog, as it is stored.
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

/// Small, since a file may hold an entry in every few bytes.
struct VelClMessageCatalogCursor::Position {
  const uint8_t* text;
  uint32_t id;
  uint32_t language;
  uint16_t sizeInBytes;
  bool unicode;

  MessageResource::Entry entry() const { return {id, unicode, text, sizeInBytes}; }
};

namespace {

/// What listing one file may cost, in bytes of its entries and of their places in the list. The entries of a
/// sound file fit several times, so that languages may share them; those of a made-up one, which all share a
/// few bytes, end here.
class Budget {
 public:
  explicit Budget(std::uint64_t sizeOfFile) : left_(4 * sizeOfFile + kBaseAllowance) {}

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

/// Hands every entry of the file to `visit`, with its language, as far as the budget goes.
template <typename Visitor>
void forEachEntry(const PortableExecutable& file, Visitor visit) {
  Budget budget(file.size());
  PortableExecutable::Cursor tables;
  MessageTable table{};
  while (file.nextMessageTable(tables, table)) {
    if (table.nameId != PortableExecutable::kMessageTableName) continue;
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

/// Entry 0 is a table's signature line, not a message: the first position is that of entry 1.
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
    // No entry is longer than its length of 16 bits tells.
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
  return settleAt(0);
}
bool VelClMessageCatalogCursor::setToNext() {
  return settleAt(isValid() ? index_ + 1 : count_);
}

/// Moves, and keeps a terminated copy of a library's text. When memory runs out the cursor stays where it
/// was.
bool VelClMessageCatalogCursor::settleAt(size_t index) {
  vel::OwnedText copy;
  if (index < count_ && positions_ != nullptr) {
    const vel::String text = vel::messages::utf8TextOf(positions_[index].entry());
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
  // A table that was replaced by a shorter one lacks the last entries.
  const size_t id = index_ + 1;
  return vel::textOrEmpty(id < catalog_.stringTableSize_ ? catalog_.stringTable_[id] : nullptr);
}
