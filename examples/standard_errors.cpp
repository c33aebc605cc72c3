// Handles errors of the library by the means of the standard library.
#include <vel.h>

#include <iostream>

namespace {

/// Throws if the pool cannot serve the request, as a handler of std::exception expects it.
void* take(VelClMemoryPool& pool, std::size_t size) {
  return velRethrowAsStd([&] { return pool.allocate(size); });
}

}  // namespace

int main() {
  VelClMemoryPool pool(1024);
  try {
    take(pool, 2048);
  } catch (const VelClStdException& exception) {
    std::cout << exception.what() << '\n';
    std::cout << "too big: " << (exception.code() == MEMORYPOOL_CHUNK_TOO_BIG ? "yes" : "no") << '\n';
  } catch (const std::exception& exception) {
    std::cout << "not from the library: " << exception.what() << '\n';
  }

  VelClFile file(VelClFilename("no such file.txt"), nullptr);
  if (!file.remove()) {
    const _VelStError& error = file.getLastError();
    const std::error_code code = velErrorCode(error);
    std::cout << code.category().name() << ": " << code.message() << ", "
              << velErrorCondition(error.errorClass).message() << '\n';
  }
}
