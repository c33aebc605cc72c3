// Replacing a file by another one that is written beside it, so that readers see either all of the old
// contents or all of the new.
#pragma once

#include <cstddef>

#include "platform/file_identity.h"
#include "platform/path_length.h"
#include "platform/system_error.h"

namespace vel::platform {

/// A replacement under way. No other user can read the new file while it is written.
struct Replacement {
  int descriptor = -1;      ///< for writing bytes
  bool isBeside = false;    ///< false when the target is a device or pipe and is written to directly
  bool keepsRights = true;  ///< after success: whether owner and permissions are those of the old file
  FileIdentity old;         ///< the file that is replaced; zeros when it did not exist

  // The following members are for the implementation only.

  /// The temporary's name is longer than the target's by a random part.
  static constexpr std::size_t kTemporaryCapacity = kFullNameCapacity + 100;

  int directory =
      -1;  ///< the directory of both names, held open; -1 where the system does not support such descriptors
  int heldTarget = -1;  ///< the old file, held open so that no other file can get its identity meanwhile
  // On Windows both names are UTF-8, whatever the encoding of the process's names is.
  char temporary[kTemporaryCapacity] = "";  ///< the system's own spelling; "" while the new file has no name
  char target[kFullNameCapacity];
};

/// Begins to replace a file, or to create one. Links are followed and stay. The new file gets the permissions
/// and, where the system allows it, the owner of the old one. Fails with EACCES for a read-only file.
/// Children do not inherit the descriptor.
SystemError startReplacement(const char* name, Replacement& replacement) noexcept;
/// Puts the new file in place, atomically and after it is safely stored. After a failure the old file is as
/// before and the new one is gone, with one exception: if storing the directory failed, the new file is in
/// place, but a power failure may undo that. Fails with ECANCELED if the name leads to another file than at
/// the start, EEXIST if a file appeared where there was none.
SystemError finishReplacement(Replacement& replacement) noexcept;
/// Gives up: the old file stays as it is.
void dropReplacement(Replacement& replacement) noexcept;
/// For programs that own their process: from now on, before SIGHUP, SIGINT or SIGTERM ends the process, the
/// temporary file of the latest replacement is removed. Ignored signals stay ignored. Windows removes it by
/// itself.
void removeUnfinishedOnSignals() noexcept;

}  // namespace vel::platform
