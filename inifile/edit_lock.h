// A file that an editor has locked: waiting for the lock, and whether a name still leads to that file.
#pragma once

#include <optional>

#include "platform/platform.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

class EditLock {
 public:
  EditLock() = default;
  EditLock(const EditLock&) = delete;
  EditLock& operator=(const EditLock&) = delete;
  ~EditLock() { release(); }

  VelEnIniFileLock acquire(const char* name, std::uint32_t timeLimitMs);
  void release();

  /// Of a file that is read; none when it is not the one that is held, or not as it was.
  std::optional<platform::FileState> checkRead(int descriptor);
  /// What is edited came from there.
  void noteRead(const platform::FileState& file) { read_ = file; }
  /// What is edited came from no file.
  void forgetRead() { read_.reset(); }
  /// False when a file is held, and the one that is to be replaced, the one that the name leads to or the one
  /// that was read is another one or has changed.
  bool mayReplace(const char* name, const platform::FileIdentity& replaced);
  bool isReplaced() const { return isReplaced_; }

 private:
  /// Makes a note of it, too.
  bool noteMatch(bool isSame);

  bool isGuarding_ = false;
  bool isReplaced_ = false;
  platform::FileLock lock_;
  std::optional<platform::FileState> read_;
};

}  // namespace vel::inifile
