// ICU as the library itself finds it, for tests that call it directly.
#pragma once

#include "codepage/icu/icu_library.h"
#include "vel_include/vel_process.h"

struct LoadedIcu {
  LoadedIcu() {
    vel::codepage::bindIcu({[](const char* name) { return opened = velDllProcLoaderOpen(name); },
                            &velDllProcLoaderGetProcedure, &velDllProcLoaderClose},
                           VEL_ICU_VERSION, functions);
    if (functions.open != nullptr) library = opened;
  }
  LoadedIcu(const LoadedIcu&) = delete;
  ~LoadedIcu() { velDllProcLoaderClose(library); }

  vel::codepage::IcuFunctions functions{};
  void* library = nullptr;  ///< null if ICU is not installed

 private:
  static inline void* opened = nullptr;
};
