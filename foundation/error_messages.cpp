// Finds the message number of an error identifier, class, severity or action. The tables are made
// from errors.tsv by generate_error_tables.py; the texts live in the messages room.
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

// RETRYDELAY (4) and USER (5) have their messages in the opposite order, 146 and 145. Keep.
unsigned int velErrorGetActionAsMessageId(VelEnErrorAction action) {
  return messageOf(kActionMessages, static_cast<std::uint32_t>(action));
}
