// Loads a message: decides which source supplies its text, has the inserts expanded, and stores the
// result. Expanding is insert_formatter.cpp's work; opening catalogs is message_catalog.cpp's.
//
// A loaded library is the only source, even for ids that it does not contain; without a library, the string
// table is. If the source does not contain the message, the text says so and names the catalog.
#include <algorithm>
#include <cstring>
#include <ostream>

#include "base/short_text.h"
#include "foundation/allocator.h"
#include "messages/catalog_library.h"
#include "messages/insert_formatter.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_messages.h"

namespace {

constexpr const char* kMissingInsert = "???";
constexpr const char* kNoCatalog = "UNABLE TO LOAD MESSAGE CATALOG: ";
constexpr const char* kNoMessage = "UNABLE TO LOAD MESSAGE #%1 FROM CATALOG: ";

const char* const kNoInserts[VEL_MAX_MESSAGE_VARIABLES] = {};

}  // namespace

VelClMessage::VelClMessage(const VelClMessageCatalog& catalog, unsigned long id)
    : VelClMessage(catalog, id, kNoInserts) {}

VelClMessage::VelClMessage(const VelClMessageCatalog& catalog, unsigned long id, const char* var1,
                           const char* var2, const char* var3, const char* var4, const char* var5,
                           const char* var6, const char* var7, const char* var8, const char* var9,
                           const char* var10)
    : catalog_(catalog), inline_(""), text_(inline_), id_(0), loaded_(false) {
  setNewMessageId(id, var1, var2, var3, var4, var5, var6, var7, var8, var9, var10);
}

VelClMessage::VelClMessage(const VelClMessageCatalog& catalog, unsigned long id, const char* const* inserts)
    : catalog_(catalog), inline_(""), text_(inline_), id_(0), loaded_(false) {
  loadMessage(static_cast<uint32_t>(id), inserts);
}

VelClMessage::VelClMessage(const VelClMessage& other)
    : catalog_(other.catalog_), inline_(""), text_(inline_), id_(0), loaded_(false) {
  *this = other;
}

VelClMessage::~VelClMessage() {
  if (hasAllocatedMemory()) VelClMemoryManager::free(text_);
}

// Intentional: copies the text, but not the catalog; setNewMessageId() still loads from this message's own.
VelClMessage& VelClMessage::operator=(const VelClMessage& other) {
  if (this == &other) return *this;
  store(other.text_, std::strlen(other.text_));
  id_ = other.id_;
  loaded_ = other.loaded_;
  return *this;
}

const char* VelClMessage::setNewMessageId(unsigned long id) {
  return loadMessage(static_cast<uint32_t>(id), kNoInserts);
}

const char* VelClMessage::setNewMessageId(unsigned long id, const char* var1, const char* var2,
                                          const char* var3, const char* var4, const char* var5,
                                          const char* var6, const char* var7, const char* var8,
                                          const char* var9, const char* var10) {
  const char* const inserts[VEL_MAX_MESSAGE_VARIABLES] = {var1, var2, var3, var4, var5,
                                                          var6, var7, var8, var9, var10};
  return loadMessage(static_cast<uint32_t>(id), inserts);
}

/// Loads the message and returns its text. Inserts that are null are shown as "???"; if the array is null,
/// all are.
const char* VelClMessage::loadMessage(uint32_t id, const char* const* inserts) {
  if (inserts == nullptr) inserts = kNoInserts;
  const char* shown[VEL_MAX_MESSAGE_VARIABLES];
  std::transform(inserts, inserts + VEL_MAX_MESSAGE_VARIABLES, shown,
                 [](const char* insert) { return insert != nullptr ? insert : kMissingInsert; });
  char text[VEL_MAX_MESSAGE_LENGTH + 1];
  size_t length = 0;
  bool loaded = false;
  if (catalog_.isValid()) {
    loaded = catalog_.library_->expand(id, shown, text, sizeof text, length);
  } else if (id < catalog_.stringTableSize_) {
    length = replaceVars(text, VEL_MAX_MESSAGE_LENGTH, catalog_.stringTable_[id], shown,
                         VEL_MAX_MESSAGE_VARIABLES);
    loaded = true;
  }
  if (!loaded) length = buildFailureText(id, text);
  // The old text is replaced last, because inserts may point into it.
  store(text, length);
  id_ = id;
  loaded_ = loaded;
  return text_;
}

// A table may have null entries, which count as "".
unsigned long VelClMessage::replaceVars(char* out, unsigned long maxLength, const char* source,
                                        const char* const* inserts, unsigned long insertCount) const {
  return static_cast<unsigned long>(vel::messages::expandTableText(
      vel::textOrEmpty(source), inserts, static_cast<uint32_t>(insertCount), out, maxLength));
}

// The name is cut rather than the text before it, which says what went wrong.
size_t VelClMessage::buildFailureText(uint32_t id, char* out) const {
  char number[16];
  velULtoa(id, number);
  const char* const inserts[] = {number};
  const size_t length =
      replaceVars(out, VEL_MAX_MESSAGE_LENGTH, catalog_.isValid() ? kNoMessage : kNoCatalog, inserts, 1);
  const char* name = catalog_.getAsCString();
  const size_t nameLength = std::min(std::strlen(name), VEL_MAX_MESSAGE_LENGTH - length);
  // NOLINTNEXTLINE(bugprone-not-null-terminated-result): the length is returned
  std::memcpy(out + length, name, nameLength);
  return length + nameLength;
}

/// Stores a copy of the text, in the object if it is short. Allocates before it frees: if the memory manager
/// throws, the message is as before.
void VelClMessage::store(const char* text, size_t length) {
  vel::OwnedText block;
  if (length > kInlineLength) block = vel::copyText(text, length);
  if (hasAllocatedMemory()) VelClMemoryManager::free(text_);
  text_ = inline_;
  if (block != nullptr) {
    text_ = block.release();
    return;
  }
  // NOLINTNEXTLINE(bugprone-not-null-terminated-result): terminated below
  std::memcpy(inline_, text, length);
  inline_[length] = '\0';
}

std::ostream& operator<<(std::ostream& stream, const VelClMessage& message) {
  return stream << message.getAsCString();
}
