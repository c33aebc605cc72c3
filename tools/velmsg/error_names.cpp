// Lists the names that an error code has in the library and on Windows. A bare code from a log does not
// tell its kind, so all kinds are tried: 5 is a severity, an action and a Windows error.
#include "tools/velmsg/error_names.h"

#include <charconv>
#include <cstring>
#include <ostream>
#include <string_view>

#include "vel_include/vel_error.h"
#include "vel_include/vel_messages.h"

namespace vel::velmsg {
namespace {

/// Returns a symbolic name, or null. Those are the same in every language, so the built-in table has them and
/// no catalog is needed.
const char* builtInMessage(unsigned int id) {
  unsigned long size = 0;
  const char* const* table = velMsgCatGetBuiltInTable(&size);
  return id != 0 && id < size ? table[id] : nullptr;
}

}  // namespace

/// "-8" and "0xFFFFFFF8" are the same number: logs show both.
bool parseNumber(const char* text, std::uint32_t& number) {
  std::string_view digits(text);
  const bool negative = digits.starts_with('-');
  if (negative) digits.remove_prefix(1);
  const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
  if (hexadecimal) digits.remove_prefix(2);
  std::uint32_t magnitude = 0;
  const char* end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, magnitude, hexadecimal ? 16 : 10);
  if (result.ec != std::errc() || result.ptr != end || (negative && magnitude > 0x80000000U)) return false;
  number = negative ? 0U - magnitude : magnitude;
  return true;
}

bool listErrorNames(std::ostream& stream, std::uint32_t number) {
  const auto value = static_cast<std::int32_t>(number);
  const struct {
    const char* kind;
    const char* name;
  } rows[] = {
      {"identifier", builtInMessage(velErrorGetIdAsMessageId(number))},
      {"class", builtInMessage(velErrorGetClassAsMessageId(static_cast<VelEnErrorClass>(value)))},
      {"severity", builtInMessage(velErrorGetSeverityAsMessageId(static_cast<VelEnErrorSeverity>(value)))},
      {"action", builtInMessage(velErrorGetActionAsMessageId(static_cast<VelEnErrorAction>(value)))},
      {"platform", velWinGetErrorAsString(number)},
  };
  bool found = false;
  for (const auto& row : rows) {
    if (row.name == nullptr) continue;
    found = true;
    stream << row.kind << '\t' << row.name << '\n';
  }
  return found;
}

}  // namespace vel::velmsg
