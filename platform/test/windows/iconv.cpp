#include "platform/test/iconv.h"

namespace vel::test {

Iconv iconvFrom(const std::string&) {
  return nullptr;
}

}  // namespace vel::test
