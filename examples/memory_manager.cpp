// Installs the program's own allocator, which counts allocations and has a limit.
#include <vel.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr size_t kMaxSize = size_t{1024} * 1024;
unsigned int taken = 0;
unsigned int given = 0;

void* allocate(size_t size) {
  if (size > kMaxSize) return nullptr;
  ++taken;
  return std::malloc(size);
}

void* reallocate(void* block, size_t size) {
  return size > kMaxSize ? nullptr : std::realloc(block, size);
}

void deallocate(void* block) {
  ++given;
  std::free(block);
}

}  // namespace

int main() {
  // Must precede any other use of the library.
  velSetNewMemoryManager(&allocate, &reallocate, &deallocate);
  {
    const VelClStringSearch search("Needle", true);
    std::printf("found at \"%s\"\n", search.getPattern("hay needle hay"));
    const VelClBitArray bits(100);
  }
  std::printf("%s\n", taken != 0 && taken == given ? "all given back" : "leaked");
  try {
    const VelClBitArray tooLarge(64UL * 1024 * 1024);
  } catch (const VelClException& failure) {
    std::printf("too large: %s\n", failure.getId() == MEMMGR_USER_OUT_OF_MEMORY ? "refused" : "failed");
  }
}
