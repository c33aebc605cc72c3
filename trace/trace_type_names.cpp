// The names of the data types.
#include "trace/trace_type_names.h"

#include <iterator>

namespace vel::trace {
namespace {

#include "trace_types.inc"

}  // namespace

const TraceTypeNames* typeNamesOf(unsigned int type) {
  static constexpr TraceTypeNames kNone = {};
  if (type == std::size(kTypeNames)) return &kNone;
  return type < std::size(kTypeNames) ? &kTypeNames[type] : nullptr;
}

}  // namespace vel::trace
