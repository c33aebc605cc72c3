// A library that creates the file named by a variable as soon as it is loaded.
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
