// A replacement of a file that is given up unless it is finished.
#pragma once

#include "platform/byte_files.h"
#include "platform/replacing.h"

namespace vel::platform {

class ReplacingFile {
 public:
  ReplacingFile() noexcept = default;
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;
  ~ReplacingFile() {
    if (isOpen_) dropReplacement(replacement_);
  }

  /// Call at most once; the others only after it has succeeded.
  SystemError start(const char* name) noexcept {
    const SystemError error = startReplacement(name, replacement_);
    isOpen_ = error == 0;
    return error;
  }
  SystemError write(const void* data, std::size_t size) noexcept {
    return writeBytes(replacement_.descriptor, data, size);
  }
  SystemError finish() noexcept {
    isOpen_ = false;
    return finishReplacement(replacement_);
  }
  /// After finish: whether the file has the owner and the permissions of the one that it replaced.
  bool keepsRights() const noexcept { return replacement_.keepsRights; }

 private:
  Replacement replacement_;
  bool isOpen_ = false;
};

}  // namespace vel::platform
