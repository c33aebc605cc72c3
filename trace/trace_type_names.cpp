// Looks up the names of data types, which generate_trace_types.py makes from trace_types.tsv.
#include "trace/trace_type_names.h"

#include <iterator>

#include "vel_include/vel_trace_entry.h"

namespace vel::trace {
namespace {

#include "trace_types.inc"

static_assert(std::size(kTypeNames) == static_cast<std::size_t>(VelEnTraceDataType::LONG_DOUBLE) + 1,
              "the last row of trace_types.tsv is not the last data type");

}  // namespace

// Intentional: the number after the last type is not an error here. Formatting such an entry shows an empty
// name before its data is found to be damaged.
const TraceTypeNames* typeNamesOf(unsigned int type) {
  static constexpr TraceTypeNames kNone = {};
  if (type == std::size(kTypeNames)) return &kNone;
  return type < std::size(kTypeNames) ? &kTypeNames[type] : nullptr;
}

}  // namespace vel::trace
