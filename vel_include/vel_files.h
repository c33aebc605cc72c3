// What programs do with files and directories, by names of any length, and with the reason of every failure:
// status, creating, copying, moving, removing, walking, and reading and writing whole files.
#ifndef VEL_FILES_H_
#define VEL_FILES_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"
#include "vel_memmgr.h"
#include "vel_status.h"

#if defined(VEL_HAS_CLASSES)
#include <string>
#include <string_view>
#include <utility>
#endif

// Names are UTF-8 on Windows and plain bytes on Linux. They need no NUL after them, and must not contain
// one. They mean what they mean to the system, without the translation of VelClFilename: a backslash is an
// ordinary character on Linux. Relative names start at the current directory. Names may have any length: on
// Linux, names of more than 4,095 bytes are resolved in steps; on Windows, long names are made absolute and
// get the prefix of the system that lifts its limit of 260 characters.
//
// The plain functions return null for success, or a failure that the caller frees by velStatusFree. Failures
// have the number of the system and the name concerned. All of them report PATH_INVALID for a name that is
// empty, contains a NUL, or on Windows is not well-formed UTF-8; nothing was done then.

// clang-format off
/// The kind of an entry.
enum VelEnFileKind VEL_ENUM_TYPE(uint32_t) {
  VEL_FILE_KIND_OTHER = 0,      ///< a device, a pipe, a socket, or unknown
  VEL_FILE_KIND_FILE = 1,       ///< a regular file
  VEL_FILE_KIND_DIRECTORY = 2,  ///< a directory
  VEL_FILE_KIND_LINK = 3        ///< a symbolic link, or a junction of Windows
};

/// What a link stands for.
enum VelEnLinks VEL_ENUM_TYPE(uint32_t) {
  VEL_LINKS_FOLLOW = 0,  ///< the entry that it leads to
  VEL_LINKS_KEEP = 1     ///< itself
};

/// What happens to a target that exists. With OLDER, a target that is not older than the source stays, which
/// counts as success.
enum VelEnOverwrite VEL_ENUM_TYPE(uint32_t) {
  VEL_OVERWRITE_NEVER = 0,   ///< it stays, and the function fails
  VEL_OVERWRITE_ALWAYS = 1,  ///< it is replaced
  VEL_OVERWRITE_OLDER = 2    ///< it is replaced if it was modified before the source
};
// clang-format on

/// A time that the system does not keep.
#define VEL_TIME_UNKNOWN INT64_MIN

/// The status of an entry. Times are in nanoseconds since the beginning of 1970 in UTC.
typedef struct VelStFileStatus {
  uint64_t size;              ///< in bytes; 0 for a directory
  int64_t modified;           ///< the contents
  int64_t accessed;           ///< as far as the file system keeps it
  int64_t changed;            ///< contents or status
  int64_t created;            ///< VEL_TIME_UNKNOWN on file systems that do not keep it
  uint64_t linkCount;         ///< the number of names of the file
  uint64_t volume;            ///< with `number`, the identity of the entry as long as it exists
  uint64_t number;            ///< see `volume`
  uint32_t kind;              ///< a VelEnFileKind
  uint32_t ownerPermissions;  ///< 4 to read, 2 to write, 1 to execute or enter, added
  uint64_t reserved[4];       ///< 0
} VelStFileStatus;

/// Sets `exists`. A link that leads nowhere does not exist. Fails with FILE_COULD_NOT_QUERY if the system
/// does not tell, for example because a parent must not be entered.
VEL_C_API VelStStatus* velFileExists(const char* path, size_t pathSize, bool* exists);

/// Reads the status. Fails with FILE_COULD_NOT_QUERY; `status` is all zeros then.
VEL_C_API VelStStatus* velFileGetStatus(const char* path, size_t pathSize, enum VelEnLinks links,
                                        VelStFileStatus* status);

/// Creates a directory. With `parents`, its parents are created, too, and a directory that exists already, or
/// a link to one, is no failure. Fails with DIRECTORY_COULD_NOT_CREATE.
VEL_C_API VelStStatus* velDirectoryCreate(const char* path, size_t pathSize, bool parents);

/// Copies a file. A link in place of the source or the target is followed. With `keepsRights`, the copy has
/// the permissions and times of the source; otherwise it is a new file, or keeps the rights of the file that
/// it replaces. Holes are not copied, and blocks are shared where the file system can. The copy gets its name
/// when it is complete, so a failure leaves an existing target as it was, and no partial copy. Fails with
/// FILE_COULD_NOT_COPY.
VEL_C_API VelStStatus* velFileCopy(const char* from, size_t fromSize, const char* to, size_t toSize,
                                   enum VelEnOverwrite overwrite, bool keepsRights);

/// Moves or renames a file, a link or a directory. `to` is the new name, not a directory to move into; it may
/// differ from `from` in case only. To another file system, a file or link is copied with its rights and
/// times, stored, put in place and only then removed from where it was; so is a directory with its contents,
/// whose target must not exist. Fails with FILE_COULD_NOT_MOVE; the source is still there.
VEL_C_API VelStStatus* velFileMove(const char* from, size_t fromSize, const char* to, size_t toSize,
                                   enum VelEnOverwrite overwrite);

/// Removes a file, read-only or not, a link itself, or an empty directory. Fails with FILE_COULD_NOT_REMOVE.
VEL_C_API VelStStatus* velFileRemove(const char* path, size_t pathSize);

/// Removes an entry of any kind, a directory with everything in it, however deep. Links are removed and never
/// followed, also if somebody exchanges directories for links meanwhile. The contents of a root are never
/// removed. Stops at the first entry that cannot be removed: FILE_COULD_NOT_REMOVE with its path.
VEL_C_API VelStStatus* velTreeRemove(const char* path, size_t pathSize);

/// Create a file, or a directory, that did not exist before, for this user alone. Its name is `prefix` and 24
/// characters that nobody can predict. `directory` of size 0 stands for the user's directory for temporary
/// files: on Windows that of the system; on Linux the value of TMP, TEMP or TMPDIR, else "/tmp". `path`
/// receives the name, NUL-terminated, which the caller frees by velFree, and unless `resultSize` is null its
/// length; null after a failure. Fail with FILE_COULD_NOT_OPEN and DIRECTORY_COULD_NOT_CREATE.
VEL_C_API VelStStatus* velTemporaryFileCreate(const char* directory, size_t directorySize, const char* prefix,
                                              size_t prefixSize, char** path, size_t* resultSize);
VEL_C_API VelStStatus* velTemporaryDirectoryCreate(const char* directory, size_t directorySize,
                                                   const char* prefix, size_t prefixSize, char** path,
                                                   size_t* resultSize);

/// Reads a whole file, device or pipe, also one whose size the system does not know beforehand. `data`
/// receives the bytes and a NUL after them, which the caller frees by velFree; null after a failure. Fails
/// with FILE_TOO_LARGE if there are more than `limit` bytes, FILE_COULD_NOT_OPEN (also for a named pipe that
/// nobody writes to), and FILE_COULD_NOT_READ.
VEL_C_API VelStStatus* velFileRead(const char* path, size_t pathSize, size_t limit, char** data,
                                   size_t* dataSize);

/// Replaces the contents of a file, or creates it. Readers see either all old or all new bytes, and so does
/// the disk after a power failure. The rights of the file are kept. A link is followed and stays; a device or
/// pipe is written to. Fails with FILE_COULD_NOT_WRITE; the file is as before then, and no other file is
/// left.
VEL_C_API VelStStatus* velFileReplace(const char* path, size_t pathSize, const void* data, size_t dataSize);

/// Appends to a file, or creates it. The bytes of other processes that append are before or after these.
/// Fails with FILE_COULD_NOT_WRITE; bytes that were appended nevertheless are removed, unless somebody else
/// appended to them.
VEL_C_API VelStStatus* velFileAppend(const char* path, size_t pathSize, const void* data, size_t dataSize);

/// How to walk. Zeros are the ordinary choice: everything, to any depth, without following links.
typedef struct VelStFileWalkOptions {
  bool
      followsLinks;  ///< enters directories that links lead to; links in the tree to their parents are errors
  uint32_t maxDepth;  ///< 1 lists the directory's own entries only; 0 is no limit
  const char*
      filter;  ///< lists entries only whose name matches: "*" any text, "?" any character; null lists all
  size_t filterSize;     ///< the bytes of `filter`
  uint64_t reserved[4];  ///< 0
} VelStFileWalkOptions;

/// A walk over the entries of a directory and those of its subdirectories: each directory before its
/// contents, in the order of the system, without "." and "..". The filter decides what is listed, not what is
/// entered; it ignores case where the system does. A walk is for one thread at a time.
typedef struct VelStFileWalk VelStFileWalk;

/// Begins a walk; `options` may be null. A link in place of the directory is followed. `walk` is before the
/// first entry, and null after a failure: FILE_COULD_NOT_READ.
VEL_C_API VelStStatus* velFileWalkOpen(const char* path, size_t pathSize, const VelStFileWalkOptions* options,
                                       VelStFileWalk** walk);
/// Ends a walk; null is ignored.
VEL_C_API void velFileWalkClose(VelStFileWalk* walk);
/// Moves to the next entry; false at the end. An entry that could not be read is an entry, too:
/// velFileWalkGetFailure tells why, and the walk continues with the next one. That is a directory that could
/// not be entered, after it was listed as an entry; a name that is not well-formed; or with `followsLinks` a
/// link that leads to one of its own parents.
VEL_C_API bool velFileWalkNext(VelStFileWalk* walk);
/// Do not enter the directory that is the current entry.
VEL_C_API void velFileWalkSkip(VelStFileWalk* walk);

/// This and the functions below describe the current entry; their results are valid until the walk moves.
/// Returns null if nothing is wrong; otherwise a failure with FILE_COULD_NOT_READ that belongs to the walk.
VEL_C_API const VelStStatus* velFileWalkGetFailure(const VelStFileWalk* walk);
/// Return the path, which begins with the name that was given to velFileWalkOpen, or the name without its
/// directory; NUL-terminated, with the size in bytes unless `size` is null. "" if there is no entry.
VEL_C_API const char* velFileWalkGetPath(VelStFileWalk* walk, size_t* size);
VEL_C_API const char* velFileWalkGetName(VelStFileWalk* walk, size_t* size);
/// Returns the kind, which for a link is LINK, with `followsLinks` that of the entry that it leads to.
VEL_C_API enum VelEnFileKind velFileWalkGetKind(const VelStFileWalk* walk);
/// Returns 1 for an entry of the directory itself, 2 for one of a subdirectory, and so on; 0 without entry.
VEL_C_API uint32_t velFileWalkGetDepth(const VelStFileWalk* walk);
/// As velFileGetStatus, through the open directory.
VEL_C_API VelStStatus* velFileWalkGetStatus(VelStFileWalk* walk, enum VelEnLinks links,
                                            VelStFileStatus* status);

#if defined(VEL_HAS_CLASSES)

/// The functions below do what the plain functions of the same name do.
inline VelClStatus velFileExists(std::string_view path, bool& exists) {
  return VelClStatus(velFileExists(path.data(), path.size(), &exists));
}
/// Counts what the system does not tell as not existing.
inline bool velFileExists(std::string_view path) {
  bool exists = false;
  return velFileExists(path, exists).isOk() && exists;
}
inline VelClStatus velFileGetStatus(std::string_view path, VelStFileStatus& status,
                                    VelEnLinks links = VEL_LINKS_FOLLOW) {
  return VelClStatus(velFileGetStatus(path.data(), path.size(), links, &status));
}
inline VelClStatus velDirectoryCreate(std::string_view path, bool parents = false) {
  return VelClStatus(velDirectoryCreate(path.data(), path.size(), parents));
}
inline VelClStatus velFileCopy(std::string_view from, std::string_view to,
                               VelEnOverwrite overwrite = VEL_OVERWRITE_NEVER, bool keepsRights = false) {
  return VelClStatus(velFileCopy(from.data(), from.size(), to.data(), to.size(), overwrite, keepsRights));
}
inline VelClStatus velFileMove(std::string_view from, std::string_view to,
                               VelEnOverwrite overwrite = VEL_OVERWRITE_NEVER) {
  return VelClStatus(velFileMove(from.data(), from.size(), to.data(), to.size(), overwrite));
}
inline VelClStatus velFileRemove(std::string_view path) {
  return VelClStatus(velFileRemove(path.data(), path.size()));
}
inline VelClStatus velTreeRemove(std::string_view path) {
  return VelClStatus(velTreeRemove(path.data(), path.size()));
}
inline VelClStatus velFileReplace(std::string_view path, std::string_view data) {
  return VelClStatus(velFileReplace(path.data(), path.size(), data.data(), data.size()));
}
inline VelClStatus velFileAppend(std::string_view path, std::string_view data) {
  return VelClStatus(velFileAppend(path.data(), path.size(), data.data(), data.size()));
}

/// A text or bytes that a plain function has returned; frees them by velFree.
class VelClReturnedText {
 public:
  /// Constructs an empty text.
  VelClReturnedText() noexcept = default;
  VelClReturnedText(VelClReturnedText&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
  VelClReturnedText& operator=(VelClReturnedText&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
  }
  ~VelClReturnedText() {
    if (data_ != nullptr) velFree(data_);
  }

  /// Return the text.
  std::string_view view() const noexcept { return {data_ != nullptr ? data_ : "", size_}; }
  operator std::string_view() const noexcept { return view(); }
  std::string str() const { return std::string(view()); }
  /// NUL-terminated.
  const char* c_str() const noexcept { return data_ != nullptr ? data_ : ""; }
  /// Returns the size in bytes.
  size_t size() const noexcept { return size_; }

  /// For the functions that return such a text: free what was there, and return where to put the result.
  char** receiveData() noexcept {
    *this = VelClReturnedText();
    return &data_;
  }
  size_t* receiveSize() noexcept { return &size_; }

 private:
  char* data_ = nullptr;
  size_t size_ = 0;
};

/// The functions below do what the plain functions of the same name do.
inline VelClStatus velTemporaryFileCreate(std::string_view directory, std::string_view prefix,
                                          VelClReturnedText& path) {
  char** const result = path.receiveData();
  return VelClStatus(velTemporaryFileCreate(directory.data(), directory.size(), prefix.data(), prefix.size(),
                                            result, path.receiveSize()));
}
inline VelClStatus velTemporaryDirectoryCreate(std::string_view directory, std::string_view prefix,
                                               VelClReturnedText& path) {
  char** const result = path.receiveData();
  return VelClStatus(velTemporaryDirectoryCreate(directory.data(), directory.size(), prefix.data(),
                                                 prefix.size(), result, path.receiveSize()));
}
inline VelClStatus velFileRead(std::string_view path, size_t limit, VelClReturnedText& contents) {
  char** const result = contents.receiveData();
  return VelClStatus(velFileRead(path.data(), path.size(), limit, result, contents.receiveSize()));
}

/// A walk, see VelStFileWalk:
///
///     VelClFileWalk walk;
///     if (const VelClStatus status = walk.open("src"); !status.isOk()) ...
///     while (walk.next()) std::cout << walk.getPath() << '\n';
///
/// A walk that is not open has no entries.
class VelClFileWalk {
 public:
  /// Constructs a walk that is not open.
  VelClFileWalk() noexcept = default;
  VelClFileWalk(VelClFileWalk&& other) noexcept : walk_(std::exchange(other.walk_, nullptr)) {}
  VelClFileWalk& operator=(VelClFileWalk&& other) noexcept {
    std::swap(walk_, other.walk_);
    return *this;
  }
  ~VelClFileWalk() { velFileWalkClose(walk_); }

  /// Begins anew.
  VelClStatus open(std::string_view directory, const VelStFileWalkOptions& options = {}) {
    velFileWalkClose(std::exchange(walk_, nullptr));
    return VelClStatus(velFileWalkOpen(directory.data(), directory.size(), &options, &walk_));
  }
  /// The functions below do what the plain functions do.
  bool next() { return velFileWalkNext(walk_); }
  void skip() { velFileWalkSkip(walk_); }

  /// Whether the current entry could be read; getFailure tells why not.
  bool isOk() const { return velFileWalkGetFailure(walk_) == nullptr; }
  /// Returns why not.
  VelClStatus getFailure() const {
    return VelClStatus(velStatusShare(const_cast<VelStStatus*>(velFileWalkGetFailure(walk_))));
  }
  /// Return path and name of the entry; valid until the walk moves.
  std::string_view getPath() const {
    size_t size = 0;
    const char* const path = velFileWalkGetPath(walk_, &size);
    return {path, size};
  }
  std::string_view getName() const {
    size_t size = 0;
    const char* const name = velFileWalkGetName(walk_, &size);
    return {name, size};
  }
  /// Return what the plain functions return.
  VelEnFileKind getKind() const { return velFileWalkGetKind(walk_); }
  uint32_t getDepth() const { return velFileWalkGetDepth(walk_); }
  VelClStatus getStatus(VelStFileStatus& status, VelEnLinks links = VEL_LINKS_KEEP) const {
    return VelClStatus(velFileWalkGetStatus(walk_, links, &status));
  }

 private:
  VelStFileWalk* walk_ = nullptr;
};

#endif

#endif
