#include "platform/test/system_messages.h"

namespace vel::test {

std::unique_ptr<SystemMessages> SystemMessages::load(const std::string&) {
  return nullptr;
}

bool hasSystemMessages() {
  return false;
}

}  // namespace vel::test
