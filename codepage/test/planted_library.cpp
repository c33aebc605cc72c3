// A library that nobody asked for: as soon as it is loaded, it writes a file where the variable says.
#include <cstdio>
#include <cstdlib>

namespace {

struct Planted {
  Planted() {
    const char* const name = std::getenv("VEL_PLANTED_MARK");
    std::FILE* const mark = name != nullptr ? std::fopen(name, "w") : nullptr;
    if (mark != nullptr) std::fclose(mark);
  }
} planted;

}  // namespace
