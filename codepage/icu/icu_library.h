// ICU at run time: its seven functions that the library uses, bound by name from whatever version is
// installed.
#pragma once

#include <cstdint>

#include "platform/platform.h"

namespace vel::codepage {

/// ICU's own types, as far as they are known here.
using IcuConverter = void;
using IcuStatus = std::int32_t;
using IcuBool = std::int8_t;

struct IcuFunctions {
  IcuConverter* (*open)(const char* name, IcuStatus* status);
  /// By number; `platform` is always 0.
  IcuConverter* (*openCcsid)(std::int32_t ccsid, int platform, IcuStatus* status);
  void (*close)(IcuConverter* converter);
  void (*setFallback)(IcuConverter* converter, IcuBool usesFallback);
  void (*toUnicode)(IcuConverter* converter, char16_t** target, const char16_t* targetLimit,
                    const char** source, const char* sourceLimit, std::int32_t* offsets, IcuBool flush,
                    IcuStatus* status);
  void (*fromUnicode)(IcuConverter* converter, char** target, const char* targetLimit,
                      const char16_t** source, const char16_t* sourceLimit, std::int32_t* offsets,
                      IcuBool flush, IcuStatus* status);
  /// The most bytes for one unit, on average over a text of at least ten units.
  std::int8_t (*getMaxCharSize)(const IcuConverter* converter);
};

/// How libraries are loaded.
struct LibraryLoader {
  void* (*load)(const char* name);
  platform::Procedure (*find)(void* library, const char* name);
  void (*free)(void* library);
};

/// Looks for ICU under the names that it has on any system: first the version that the build knows, 0 for
/// none, then names without a version, then the other versions, newest first. False when there is none with
/// all seven functions. The library stays loaded.
bool bindIcu(const LibraryLoader& loader, int ownVersion, IcuFunctions& functions) noexcept;

/// Returns the functions of the ICU that is installed, or null when there is none. The first call looks for
/// it, the others return the same answer; ICU stays loaded until the process ends.
const IcuFunctions* installedIcu();

}  // namespace vel::codepage
