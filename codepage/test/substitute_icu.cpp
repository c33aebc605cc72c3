// An ICU of seven functions that knows every page, all of them as Latin-1. From the opening on that the
// environment tells it has no memory.
#include <cstdint>
#include <cstdlib>

#define SUBSTITUTE extern "C" __attribute__((visibility("default")))

namespace {

constexpr std::int32_t kOutOfMemory = 7;
constexpr std::int32_t kOverflow = 15;
int openings = 0;
char converter;

template <typename Target, typename Source>
void copyUnits(Target** target, const Target* targetLimit, const Source** source, const Source* sourceLimit,
               std::int32_t* status) {
  for (; *source != sourceLimit; ++*source) {
    if (*target == targetLimit) {
      *status = kOverflow;
      return;
    }
    const unsigned int unit =
        sizeof(Source) == 1 ? static_cast<unsigned char>(**source) : static_cast<unsigned int>(**source);
    *(*target)++ = static_cast<Target>(unit > 0xFF ? 0x1A : unit);
  }
}

}  // namespace

SUBSTITUTE void* ucnv_open(const char*, std::int32_t* status) {
  const char* const limit = std::getenv("VEL_SUBSTITUTE_OPENINGS");
  if (limit == nullptr || ++openings <= std::atoi(limit)) return &converter;
  *status = kOutOfMemory;
  return nullptr;
}
SUBSTITUTE void* ucnv_openCCSID(std::int32_t, int, std::int32_t* status) {
  return ucnv_open("", status);
}
SUBSTITUTE void ucnv_close(void*) {}
SUBSTITUTE void ucnv_setFallback(void*, std::int8_t) {}
SUBSTITUTE void ucnv_toUnicode(void*, char16_t** target, const char16_t* targetLimit, const char** source,
                               const char* sourceLimit, std::int32_t*, std::int8_t, std::int32_t* status) {
  copyUnits(target, targetLimit, source, sourceLimit, status);
}
SUBSTITUTE void ucnv_fromUnicode(void*, char** target, const char* targetLimit, const char16_t** source,
                                 const char16_t* sourceLimit, std::int32_t*, std::int8_t,
                                 std::int32_t* status) {
  copyUnits(target, targetLimit, source, sourceLimit, status);
}
SUBSTITUTE std::int8_t ucnv_getMaxCharSize(const void*) {
  return 1;
}
