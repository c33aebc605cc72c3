#include "platform/test/iconv.h"

#include <iconv.h>

namespace vel::test {

Iconv::Iconv(const std::string& page) : handle_(iconv_open("UTF-16LE", page.c_str())) {
  if (handle_ == reinterpret_cast<void*>(-1)) handle_ = nullptr;
}

Iconv::~Iconv() {
  if (isThere()) iconv_close(handle_);
}

std::optional<std::string> Iconv::convert(std::string bytes) const {
  std::string units(bytes.size() * 4, '\0');
  char* source = bytes.data();
  char* target = units.data();
  std::size_t rest = bytes.size();
  std::size_t room = units.size();
  iconv(handle_, nullptr, nullptr, nullptr, nullptr);
  if (iconv(handle_, &source, &rest, &target, &room) != 0) return std::nullopt;
  units.resize(units.size() - room);
  return units;
}

}  // namespace vel::test
