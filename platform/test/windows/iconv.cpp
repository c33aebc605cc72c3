#include "platform/test/iconv.h"

namespace vel::test {

Iconv::Iconv(const std::string&) : handle_(nullptr) {}

Iconv::~Iconv() = default;

std::optional<std::string> Iconv::convert(std::string) const {
  return std::nullopt;
}

}  // namespace vel::test
