// Finds ICU at run time and binds the seven of its functions that the library uses, from whatever version is
// installed. Programs start without ICU, and no header of it is needed to build.
#pragma once

#include <cstdint>

#include "platform/dynamic_libraries.h"

namespace vel::codepage {

/// ICU's types UConverter, UErrorCode and UBool.
using IcuConverter = void;
using IcuStatus = std::int32_t;
using IcuBool = std::int8_t;

/// The functions ucnv_open, ucnv_openCCSID, and so on, as ICU declares them.
struct IcuFunctions {
  IcuConverter* (*open)(const char* name, IcuStatus* status);
  /// Opens a converter by its CCSID; `platform` must be 0.
  IcuConverter* (*openCcsid)(std::int32_t ccsid, int platform, IcuStatus* status);
  void (*close)(IcuConverter* converter);
  void (*setFallback)(IcuConverter* converter, IcuBool usesFallback);
  void (*toUnicode)(IcuConverter* converter, char16_t** target, const char16_t* targetLimit,
                    const char** source, const char* sourceLimit, std::int32_t* offsets, IcuBool flush,
                    IcuStatus* status);
  void (*fromUnicode)(IcuConverter* converter, char** target, const char* targetLimit,
                      const char16_t** source, const char16_t* sourceLimit, std::int32_t* offsets,
                      IcuBool flush, IcuStatus* status);
  /// Returns the most bytes for one unit. A text of n units needs at most (n + 10) times as many.
  std::int8_t (*getMaxCharSize)(const IcuConverter* converter);
};

/// How libraries are loaded; tests pass their own.
struct LibraryLoader {
  void* (*load)(const char* name);
  platform::Procedure (*find)(void* library, const char* name);
  void (*free)(void* library);
};

/// Looks for ICU under the names that its libraries have on any system: first in the version `ownVersion`,
/// unless that is 0, then under names without a version, then in the other versions, newest first. Binds the
/// first library that has all seven functions, which stays loaded, and returns true; returns false if no
/// library has them.
bool bindIcu(const LibraryLoader& loader, int ownVersion, IcuFunctions& functions) noexcept;

/// Returns the functions of the installed ICU, or null if none is installed. The first call searches for it;
/// later calls return the same result. ICU stays loaded until the process ends.
const IcuFunctions* installedIcu();

}  // namespace vel::codepage
