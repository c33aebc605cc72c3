// Support for the fuzz targets of conversions.
#pragma once

#include "codepage/test/outcome.h"
#include "fuzz/bytes.h"

namespace fuzz {

/// The input of a target: the first byte selects a converter, the second one a target size, and the source
/// follows.
struct Input {
  explicit Input(Bytes bytes) : choice(bytes.byte()), share(bytes.byte()), source(bytes.rest()) {}

  /// Returns a target size from 0 to slightly more than `need`.
  std::size_t room(std::size_t need) const { return need * share / 240; }

  std::size_t choice, share;
  std::string_view source;
};

}  // namespace fuzz
