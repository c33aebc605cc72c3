// Loads a message: decides which source supplies its text, has the variables substituted, and stores the
// result. Substituting is insert_formatter.cpp's work; opening catalogs is message_catalog.cpp's.
//
// A loaded library is the only source, even for ids that it lacks; without one it is the string table. If
// neither has the message, the text says so and names the catalog.
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

constexpr const char* kMissingVariable = "???";
constexpr const char* kNoCatalog = "UNABLE TO LOAD MESSAGE CATALOG: ";
constexpr const char* kNoMessage = "UNABLE TO LOAD MESSAGE #%1 FROM CATALOG: ";

const char* const kNoVariables[VEL_MAX_MESSAGE_VARIABLES] = {};

}  // namespace

VelClMessage::VelClMessage(const VelClMessageCatalog& catalog, unsigned long id)
    : VelClMessage(catalog, id, kNoVariables) {}

VelClMessage::VelClMessage(const VelClMessageCatalog& catalog, unsigned long id, const char* var1,
                           const char* var2, const char* var3, const char* var4, const char* var5,
                           const char* var6, const char* var7, const char* var8, const char* var9,
                           const char* var10)
    : catalog_(catalog), inline_(""), text_(inline_), id_(0), loaded_(false) {
  setNewMessageId(id, var1, var2, var3, var4, var5, var6, var7, var8, var9, var10);
}

VelClMessage::VelClMessage(const VelClMessageCatalog& catalog, unsigned long id, const char* const* variables)
    : catalog_(catalog), inline_(""), text_(inline_), id_(0), loaded_(false) {
  loadMessage(static_cast<uint32_t>(id), variables);
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
  return loadMessage(static_cast<uint32_t>(id), kNoVariables);
}

const char* VelClMessage::setNewMessageId(unsigned long id, const char* var1, const char* var2,
                                          const char* var3, const char* var4, const char* var5,
                                          const char* var6, const char* var7, const char* var8,
                                          const char* var9, const char* var10) {
  const char* const variables[VEL_MAX_MESSAGE_VARIABLES] = {var1, var2, var3, var4, var5,
                                                            var6, var7, var8, var9, var10};
  return loadMessage(static_cast<uint32_t>(id), variables);
}

/// Loads the message and returns its text. Variables that are null count as not given and are shown as "???";
/// if the array is null, so are all.
const char* VelClMessage::loadMessage(uint32_t id, const char* const* variables) {
  if (variables == nullptr) variables = kNoVariables;
  const char* inserts[VEL_MAX_MESSAGE_VARIABLES];
  std::transform(variables, variables + VEL_MAX_MESSAGE_VARIABLES, inserts,
                 [](const char* variable) { return variable != nullptr ? variable : kMissingVariable; });
  char text[VEL_MAX_MESSAGE_LENGTH + 1];
  size_t length = 0;
  bool loaded = false;
  if (catalog_.isValid()) {
    loaded = catalog_.library_->expand(id, inserts, text, sizeof text, length);
  } else if (id < catalog_.stringTableSize_) {
    length = replaceVars(text, VEL_MAX_MESSAGE_LENGTH, catalog_.stringTable_[id], inserts,
                         VEL_MAX_MESSAGE_VARIABLES);
    loaded = true;
  }
  if (!loaded) length = buildFailureText(id, text);
  // The old text is replaced last, because variables may point into it.
  store(text, length);
  id_ = id;
  loaded_ = loaded;
  return text_;
}

// A table may have null entries, which count as "".
unsigned long VelClMessage::replaceVars(char* out, unsigned long maxLength, const char* source,
                                        const char* const* variables, unsigned long variableCount) const {
  return static_cast<unsigned long>(vel::messages::expandTableText(
      vel::textOrEmpty(source), variables, static_cast<uint32_t>(variableCount), out, maxLength));
}

// The name is cut rather than the text before it, which says what went wrong.
size_t VelClMessage::buildFailureText(uint32_t id, char* out) const {
  char number[16];
  velULtoa(id, number);
  const char* const variables[] = {number};
  const size_t length =
      replaceVars(out, VEL_MAX_MESSAGE_LENGTH, catalog_.isValid() ? kNoMessage : kNoCatalog, variables, 1);
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
