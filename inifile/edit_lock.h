// The lock of an editor on its file, and the check that the name still leads to the locked file, unchanged.
#pragma once

#include <optional>

#include "platform/file_lock.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

class EditLock {
 public:
  EditLock() = default;
  EditLock(const EditLock&) = delete;
  EditLock& operator=(const EditLock&) = delete;
  ~EditLock() { release(); }

  /// Releases an earlier lock and locks the file, waiting up to the limit for other programs. A limit of 0
  /// does not wait.
  VelEnIniFileLock acquire(const char* name, std::uint32_t timeLimitMs);
  void release();

  /// Returns the state of a file that was read, or nothing if a lock is held and the file is not the locked
  /// one or has changed since.
  std::optional<platform::FileState> checkRead(int descriptor);
  /// Records the file that the edited text came from.
  void noteRead(const platform::FileState& file) { read_ = file; }
  /// Records that the edited text was not read from a file.
  void forgetRead() { read_.reset(); }
  /// Returns whether the file may be replaced: always without a lock. With a lock, three files must all be
  /// the locked one, unchanged: `replaced`, which the replacement found; the one that the name leads to now;
  /// and the one that was read.
  bool mayReplace(const char* name, const platform::FileIdentity& replaced);
  /// Returns whether the last checkRead() or mayReplace() found another file or a changed one.
  bool isReplaced() const { return isReplaced_; }

 private:
  /// Records the result for isReplaced and returns it.
  bool noteMatch(bool isSame);

  bool isGuarding_ = false;  ///< locked, or on a file system without locks
  bool isReplaced_ = false;
  platform::FileLock lock_;
  std::optional<platform::FileState> read_;
};

}  // namespace vel::inifile
