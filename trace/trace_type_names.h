// The names of data types, as the formatter's "%x" and "%X" show them.
#pragma once

#include <string_view>

namespace vel::trace {

struct TraceTypeNames {
  std::string_view shortName;
  std::string_view longName;
};

/// Returns the names of a type, or null for a number that is not a type. The
/// number after the last type has empty names.
const TraceTypeNames* typeNamesOf(unsigned int type);

}  // namespace vel::trace
