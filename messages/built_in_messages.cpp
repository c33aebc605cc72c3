// The table itself is made from messages.tsv by generate_messages.py.
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
