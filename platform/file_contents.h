// The contents of files: reading, appending, replacing and copying. See named_files.h for names and errors.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/system_error.h"

namespace vel::platform {

/// A file, device or pipe that is open for reading; closes itself.
class SourceFile {
 public:
  SourceFile() noexcept = default;
  SourceFile(const SourceFile&) = delete;
  SourceFile& operator=(const SourceFile&) = delete;
  ~SourceFile();

  /// Opens it. A named pipe without writer is refused; reading waits for what a writer sends.
  NativeError open(const char* name) noexcept;
  /// Reads at most `capacity` bytes, and 0 only at the end.
  NativeError read(void* buffer, std::size_t capacity, std::size_t& size) noexcept;
  /// The bytes that are left, as far as the system knows.
  std::uint64_t sizeLeft() const noexcept;

 private:
  std::intptr_t handle_ = -1;
};

/// Appends to a file, which is created if it is missing. If that fails halfway, the bytes that were appended
/// are removed, unless somebody else has appended to them meanwhile.
NativeError appendTo(const char* name, const void* data, std::size_t size) noexcept;

/// Replaces the contents atomically; a missing file is created. The rights of the file are kept, links are
/// followed and stay. A device or pipe is written to.
NativeError replaceContents(const char* name, const void* data, std::size_t size) noexcept;

struct CopyOptions {
  bool replaces;      ///< else an existing target is an error
  bool keepsRights;   ///< permissions and times are those of the source
  bool waitsForDisk;  ///< returns when the copy is on stable storage
};
/// Which file a failure is about.
enum class CopySide { Source, Target };

/// Copies a regular file, without its holes where the system can. The copy appears under its name when it is
/// complete; after a failure the target is as it was. A link in the target's place is followed and stays.
NativeError copyContents(const char* from, const char* to, const CopyOptions& options,
                         CopySide& failed) noexcept;

/// Whether a rename failed because the target is on another file system.
bool isOtherFileSystem(NativeError error) noexcept;

}  // namespace vel::platform
