// Holds the library's own messages as a string table, which generate_messages.py makes from messages.tsv. The
// same file is the source of the catalog library, so that a message reads alike from either.
#include <iterator>

#include "vel_include/vel_messages.h"

namespace {

constexpr const char* kMessages[] = {
#include "built_in_messages.inc"
};

}  // namespace

const char* const* velMsgCatGetBuiltInTable(unsigned long* size) {
  if (size != nullptr) *size = std::size(kMessages);
  return kMessages;
}
