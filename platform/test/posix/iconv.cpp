#include "platform/test/iconv.h"

#include <iconv.h>

#include <memory>

namespace vel::test {

Iconv iconvFrom(const std::string& page) {
  iconv_t opened = iconv_open("UTF-16LE", page.c_str());
  if (reinterpret_cast<std::intptr_t>(opened) == -1) return nullptr;
  return [handle = std::shared_ptr<void>(opened, iconv_close)](std::string bytes) {
    std::string units(bytes.size() * 4, '\0');
    char *source = bytes.data(), *target = units.data();
    std::size_t rest = bytes.size(), room = units.size();
    iconv(handle.get(), nullptr, nullptr, nullptr, nullptr);
    const bool isMapped = iconv(handle.get(), &source, &rest, &target, &room) == 0;
    units.resize(units.size() - room);
    return isMapped ? std::optional(units) : std::nullopt;
  };
}

}  // namespace vel::test
