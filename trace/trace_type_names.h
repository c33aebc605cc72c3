// The names of the data types, by their numbers.
#pragma once

#include <string_view>

namespace vel::trace {

struct TraceTypeNames {
  std::string_view shortName;
  std::string_view longName;
};

/// Null for a number that is no type. One more than the last type is a number of its own, without names.
const TraceTypeNames* typeNamesOf(unsigned int type);

}  // namespace vel::trace
