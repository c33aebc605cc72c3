// What the fuzz targets of conversions share.
#pragma once

#include "codepage/test/outcome.h"
#include "fuzz/bytes.h"

namespace fuzz {

/// The first byte chooses a converter, the second one a target size.
struct Input {
  Input(const std::uint8_t* data, std::size_t size)
      : choice(size > 0 ? data[0] : 0U),
        share(size > 1 ? data[1] : 0U),
        source(size > 2 ? std::string_view(reinterpret_cast<const char*>(data) + 2, size - 2)
                        : std::string_view()) {}

  /// From 0 to somewhat more than `need`.
  std::size_t room(std::size_t need) const { return need * share / 240; }

  unsigned int choice;
  std::size_t share;
  std::string_view source;
};

/// For conversions that need room for all: with enough, with exactly enough, and with too little.
inline void requireAll(const VelClConverterABase& converter, const Input& input, const Outcome& expected) {
  const std::size_t need = expected.bytes.size();
  for (const std::size_t room : {input.source.size() * 2, need, input.room(need), need == 0 ? 0 : need - 1})
    require(convert(converter, input.source, room) == (room >= need ? expected : tooBig("", 0)));
}

}  // namespace fuzz
