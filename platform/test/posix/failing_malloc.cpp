// An allocator that a child preloads (LD_PRELOAD), so that allocations of the C and C++ run-time libraries
// fail, too:
//   VEL_FAILING_MALLOC=5     the fifth allocation of the process fails
//   VEL_FAILING_MALLOC=5+    the fifth and all later ones fail
//   VEL_MALLOC_COUNT=file    writes the number of allocations to this file
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// The allocator of the C library, under the names it has for such replacements.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
}

namespace {

constexpr const char* kVariable = "VEL_FAILING_MALLOC=";

unsigned long number = 0;

/// Reads the variable each time, because the environment does not exist yet when the loader allocates.
bool fails() {
  ++number;
  if (environ == nullptr) return false;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (std::strncmp(*variable, kVariable, std::strlen(kVariable)) != 0) continue;
    char* end = nullptr;
    const unsigned long from = std::strtoul(*variable + std::strlen(kVariable), &end, 10);
    return *end == '+' ? number >= from : number == from;
  }
  return false;
}

__attribute__((destructor)) void tellNumber() {
  const char* const name = std::getenv("VEL_MALLOC_COUNT");
  if (name == nullptr) return;
  char text[24];
  const int size = std::snprintf(text, sizeof text, "%lu", number);
  const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (write(file, text, static_cast<std::size_t>(size)) != size) std::abort();
  close(file);
}

void* refuse() {
  errno = ENOMEM;
  return nullptr;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
  return fails() ? refuse() : __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
  return fails() ? refuse() : __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void* realloc(void* block, std::size_t size) {
  return fails() ? refuse() : __libc_realloc(block, size);
}

}  // extern "C"
