// Lists every message of a catalog, as it is stored.
#include <algorithm>
#include <cstring>
#include <tuple>

#include "messages/catalog_library.h"
#include "messages/message_resource.h"
#include "messages/resource_text.h"
#include "vel_include/vel_messages.h"

using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;

struct VelClMessageCatalogCursor::Position {
  MessageResource::Entry entry;
  uint32_t language;
  const char* tableText;  ///< the text itself for entries of a string table, else null
};

namespace {

/// Hands every entry of the file to `take`, with its language.
template <typename Take>
void forEachEntry(const PortableExecutable& file, Take take) {
  PortableExecutable::Cursor tables;
  MessageTable table{};
  while (file.nextMessageTable(tables, table)) {
    if (table.nameId != PortableExecutable::kMessageTableName) continue;
    const MessageResource resource(table.data, table.sizeInBytes);
    MessageResource::Cursor entries;
    MessageResource::Entry entry{};
    while (resource.next(entries, entry)) take(entry, table.language);
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

/// Entry 0 is a table's signature line, not a message.
void VelClMessageCatalogCursor::listTable() {
  if (catalog_.stringTableSize_ < 2) return;
  count_ = catalog_.stringTableSize_ - 1;
  positions_ = static_cast<Position*>(VelClMemoryManager::calloc(count_, sizeof(Position)));
  for (size_t i = 0; i < count_; ++i) {
    const char* text = catalog_.stringTable_[i + 1];
    positions_[i].entry.id = static_cast<uint32_t>(i + 1);
    positions_[i].tableText = text != nullptr ? text : "";
  }
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
    *next++ = {entry, language, nullptr};
  });
  std::sort(positions_, positions_ + count_, [](const Position& a, const Position& b) {
    return std::tie(a.entry.id, a.language) < std::tie(b.entry.id, b.language);
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
  if (index < count_ && positions_[index].tableText == nullptr) {
    const vel::String text = vel::messages::utf8TextOf(positions_[index].entry);
    copy = vel::copyText(text.data(), text.size());
  }
  VelClMemoryManager::free(text_);
  text_ = copy.release();
  index_ = index;
  return isValid();
}

unsigned long VelClMessageCatalogCursor::getId() const {
  return isValid() ? positions_[index_].entry.id : 0;
}

unsigned int VelClMessageCatalogCursor::getLanguage() const {
  return isValid() ? positions_[index_].language : 0;
}

const char* VelClMessageCatalogCursor::getAsCString() const {
  if (!isValid()) return "";
  const char* tableText = positions_[index_].tableText;
  return tableText != nullptr ? tableText : text_;
}
