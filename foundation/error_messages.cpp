// Maps error identifiers, classes, severities and actions to message numbers. The tables are generated from
// errors.tsv by generate_error_tables.py, which also sorts them; the texts are in the messages room.
#include <algorithm>
#include <cstdint>
#include <iterator>

#include "vel_include/vel_error.h"

namespace {

struct MessageRow {
  std::uint32_t value;
  unsigned int message;
};

#include "error_messages.inc"

/// Returns the message number of a value, or 0 if the value is not in the table. The rows are sorted by
/// value.
template <std::size_t count>
unsigned int messageOf(const MessageRow (&rows)[count], std::uint32_t value) noexcept {
  const auto* row = std::lower_bound(std::begin(rows), std::end(rows), value,
                                     [](const MessageRow& a, std::uint32_t b) { return a.value < b; });
  return row != std::end(rows) && row->value == value ? row->message : 0;
}

}  // namespace

unsigned int velErrorGetIdAsMessageId(unsigned long id) {
  return messageOf(kIdentifierMessages, static_cast<std::uint32_t>(id));
}

unsigned int velErrorGetClassAsMessageId(VelEnErrorClass errorClass) {
  return messageOf(kClassMessages, static_cast<std::uint32_t>(errorClass));
}

unsigned int velErrorGetSeverityAsMessageId(VelEnErrorSeverity severity) {
  return messageOf(kSeverityMessages, static_cast<std::uint32_t>(severity));
}

// Intentional: RETRYDELAY (4) has message 146 and USER (5) has 145, against the order of their values. The
// texts are numbered that way; exchanging the numbers would exchange the two texts.
unsigned int velErrorGetActionAsMessageId(VelEnErrorAction action) {
  return messageOf(kActionMessages, static_cast<std::uint32_t>(action));
}
