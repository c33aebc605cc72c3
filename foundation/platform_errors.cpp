// Names Windows error codes, on every system: a trace or message read on Linux may have been written on
// Windows. The table is generated from platform_errors.tsv by generate_error_tables.py.
#include <algorithm>
#include <cstdint>
#include <iterator>

#include "vel_include/vel_error.h"

namespace {

struct PlatformErrorRow {
  std::int32_t code;
  const char* name;
};

constexpr PlatformErrorRow kPlatformErrors[] = {
#include "platform_errors.inc"
};

}  // namespace

const char* velWinGetErrorAsString(unsigned long code) {
  // The table is sorted as signed numbers: it begins with negative codes.
  const auto wanted = static_cast<std::int32_t>(static_cast<std::uint32_t>(code));
  const auto* row = std::lower_bound(std::begin(kPlatformErrors), std::end(kPlatformErrors), wanted,
                                     [](const PlatformErrorRow& a, std::int32_t b) { return a.code < b; });
  return row != std::end(kPlatformErrors) && row->code == wanted ? row->name : nullptr;
}
