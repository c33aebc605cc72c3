// Errors, exceptions, memory, and a stopwatch.
#include <vel.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace {

/// Throws with everything a caller can need to decide.
void openValve(int number) {
  if (number < 10) return;
  const _VelStUserError error(4711, VelEnErrorClass::USER_DATA_ERROR, VelEnErrorSeverity::NORMAL,
                              VelEnErrorAction::RETRY);
  VelClException exception(error, "there is no such valve");
  exception.setOrigin("openValve", __LINE__);
  throw exception;
}

void* noMemory(size_t) {
  return nullptr;
}

void showException(const VelClExceptionABase& exception) {
  std::cout << exception.getCause() << (exception.getLine() != 0 ? ", with a line\n" : "\n");
}

void showErrors() {
  try {
    openValve(12);
  } catch (const VelClException& exception) {
    showException(exception);
  }
  // Functions for files do not throw.
  VelClFile missing("missing.txt", nullptr);
  missing.remove();
  const _VelStError& last = missing.getLastError();
  std::cout << "could not remove: " << (last.errorId == FILE_COULD_NOT_REMOVE)
            << (last.errorClass == VelEnErrorClass::IO_NOT_EXISTENT) << '\n';
  // A failed allocation is fatal. The program's own allocator fails here; see the example memory_manager.
  VelClMemoryManager::setNewMemoryManager(&noMemory, nullptr, &std::free);
  try {
    VelClMemoryManager::malloc(8);
  } catch (const VelClExceptionFatal& exception) {
    std::cout << "no memory: " << (exception.getId() == MEMMGR_USER_OUT_OF_MEMORY) << '\n';
  }
  // The same for handlers of standard exceptions; it is a std::bad_alloc.
  try {
    velRethrowAsStd([] { return VelClMemoryManager::malloc(8); });
  } catch (const VelClStdOutOfMemory& exception) {
    std::cout << "bad_alloc: " << (exception.getException().getId() == MEMMGR_USER_OUT_OF_MEMORY) << '\n';
  }
  VelClMemoryManager::setNewMemoryManager(&std::malloc, &std::realloc, &std::free);
}

}  // namespace

int main() {
  const VelClTiming stopwatch;
  showErrors();

  // Many small texts that are released together.
  VelClMemoryPool pool(1024, 1);
  std::size_t length = 0;
  for (int i = 0; i < 1000; ++i) {
    char* const text = static_cast<char*>(pool.allocate(8));
    std::memcpy(text, "seven 7", 8);
    length += std::strlen(text);
  }
  std::cout << length << " characters in " << pool.getNumOfBlocks() << " blocks\n";
  pool.clear();

  // One block with an alignment of its own, as the pool uses them.
  const VelClMemoryPoolBlock page(4096, 4096);
  std::cout << "aligned: " << (reinterpret_cast<std::uintptr_t>(page.getBegin()) % 4096 == 0) << '\n';
  std::cout << "time has passed: " << (stopwatch.elapsed() >= 0) << '\n';
}
