// The handle of the plain C catalog functions: a catalog, owned or not, and a buffer for the last text. C
// programs cannot destroy a message, so its text is copied to the buffer and lives until the next call.
#include <cstdarg>
#include <cstring>

#include "foundation/allocator.h"
#include "vel_include/vel_messages.h"

namespace {

using CatalogProxy = VelClMessageCatalogProxy;

const char* const kNoInserts[VEL_MAX_MESSAGE_VARIABLES] = {};

CatalogProxy* proxyOf(VelMsgCatHandle handle) {
  return reinterpret_cast<CatalogProxy*>(handle);
}
VelMsgCatHandle handleOf(CatalogProxy* proxy) {
  return reinterpret_cast<VelMsgCatHandle>(proxy);
}

/// Returns the proxy as a handle. If the library of its catalog is not loaded, destroys the proxy and returns
/// null.
VelMsgCatHandle handleIfValid(CatalogProxy* proxy) {
  if (proxy->isValid()) return handleOf(proxy);
  vel::destroy(proxy);
  return nullptr;
}

}  // namespace

VelClMessageCatalogProxy::VelClMessageCatalogProxy(const VelClFilename& name)
    : owned_(true), catalog_(vel::create<VelClMessageCatalog>(name)), text_("") {}

VelClMessageCatalogProxy::VelClMessageCatalogProxy(const VelClFilename& name, const char* const* table,
                                                   unsigned long size)
    : owned_(true), catalog_(nullptr), text_("") {
  auto* catalog = vel::create<VelClMessageCatalog>(name);
  // The table is only a fallback: a loaded library wins.
  if (!catalog->isValid()) catalog->useStringTable(table, size);
  catalog_ = catalog;
}

VelClMessageCatalogProxy::VelClMessageCatalogProxy(const VelClMessageCatalog* catalog)
    : owned_(false), catalog_(catalog), text_("") {}

VelClMessageCatalogProxy::~VelClMessageCatalogProxy() {
  // Owned catalogs were created by this class, as objects that are not const.
  if (owned_) vel::destroy(const_cast<VelClMessageCatalog*>(catalog_));
  catalog_ = nullptr;
}

bool VelClMessageCatalogProxy::isValid() const {
  return catalog_ != nullptr && catalog_->isValid();
}

bool VelClMessageCatalogProxy::isValidMessageId(unsigned long id) const {
  return catalog_ != nullptr && VelClMessage(*catalog_, id).isValid();
}

unsigned int VelClMessageCatalogProxy::getLanguage() const {
  return catalog_ != nullptr ? catalog_->getLanguage() : 0;
}

const char* VelClMessageCatalogProxy::getMessage(unsigned long id) {
  return getMessage(id, kNoInserts);
}

const char* VelClMessageCatalogProxy::getMessage(unsigned long id, const char* const* inserts) {
  if (catalog_ == nullptr) return "";
  const VelClMessage message(*catalog_, id, inserts);
  const char* text = message.getAsCString();
  // VEL_MAX_MESSAGE_LENGTH bounds every message, and the buffer has one byte more.
  std::memcpy(text_, text, std::strlen(text) + 1);
  return text_;
}

VelMsgCatHandle velMsgCatOpen(const char* fileName) {
  return handleIfValid(vel::create<CatalogProxy>(VelClFilename(fileName)));
}

VelMsgCatHandle velMsgCatOpenAttach(const VelClMessageCatalog* catalog) {
  return handleIfValid(vel::create<CatalogProxy>(catalog));
}

VelMsgCatHandle velMsgCatOpenOrUseStringTable(const char* fileName, const char* const* table,
                                              unsigned long size) {
  return handleOf(vel::create<CatalogProxy>(VelClFilename(fileName), table, size));
}

bool velMsgCatIsValid(VelMsgCatHandle handle, unsigned long id) {
  return proxyOf(handle)->isValidMessageId(id);
}

const char* velMsgCatGet(VelMsgCatHandle handle, unsigned long id) {
  return proxyOf(handle)->getMessage(id);
}

const char* velMsgCatGetVar(VelMsgCatHandle handle, unsigned long id, ...) {
  const char* inserts[VEL_MAX_MESSAGE_VARIABLES] = {};
  std::va_list arguments;
  va_start(arguments, id);
  // Intentional: a first insert that is null does not end the list, so callers without inserts pass two
  // nulls.
  inserts[0] = va_arg(arguments, const char*);
  for (int i = 1; i < VEL_MAX_MESSAGE_VARIABLES; ++i) {
    inserts[i] = va_arg(arguments, const char*);
    if (inserts[i] == nullptr) break;
  }
  va_end(arguments);
  return proxyOf(handle)->getMessage(id, inserts);
}

unsigned int velMsgCatGetLanguage(VelMsgCatHandle handle) {
  return proxyOf(handle)->getLanguage();
}

void velMsgCatClose(VelMsgCatHandle handle) {
  vel::destroy(proxyOf(handle));
}
