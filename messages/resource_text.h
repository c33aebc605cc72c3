// Texts of message resources as single-byte texts.
#pragma once

#include "foundation/allocator.h"
#include "messages/message_resource.h"

namespace vel::messages {

/// The text in the process's single-byte code page; texts stored as single bytes stay as they are.
String ansiTextOf(const MessageResource::Entry& entry);
/// The same with Unicode texts in UTF-8.
String utf8TextOf(const MessageResource::Entry& entry);

}  // namespace vel::messages
