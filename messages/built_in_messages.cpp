// Holds the library's own messages as a string table, which generate_messages.py makes from messages.tsv. The
// same file is the source of the catalog library, so that a message reads alike from either.
#include "messages/built_in_messages.h"

#include <iterator>

#include "vel_include/vel_messages.h"

namespace {

constexpr const char* kMessages[] = {
#include "built_in_messages.inc"
};
static_assert(std::size(kMessages) == vel::messages::kBuiltInMessageCount);

}  // namespace

const char* const* vel::messages::builtInMessages() noexcept {
  return kMessages;
}

const char* const* velMsgCatGetBuiltInTable(unsigned long* size) {
  if (size != nullptr) *size = vel::messages::kBuiltInMessageCount;
  return kMessages;
}
