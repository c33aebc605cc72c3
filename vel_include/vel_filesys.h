// Names of files and directories, operations on files and directories, and listings of directories.
//
// Backslash names work on every system. On Linux the drive is dropped, "\\" becomes "/", and a component that
// does not exist as written is looked up again ignoring ASCII case; the server and share of a network name
// become directories. Names in slash style are passed to the system unchanged.
//
// On Windows names are in the ANSI code page of the process, or in UTF-8 (see vel_utf8.h), and are converted
// without loss: an operation on a name that cannot be converted fails, and never affects another file. A
// directory can have entries whose names the code page cannot spell. They are listed with "?", which no name
// of a file contains, for each character that it lacks: such an entry cannot be opened by the listed name.
// Removing a directory with its contents removes these entries, too.
#ifndef VEL_FILESYS_H_
#define VEL_FILESYS_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_error.h"
#include "vel_export.h"

/// The longest name of a file or directory, in characters. Longer names are cut. A buffer that a function
/// below writes to holds one character more, for the terminating NUL.
#define VEL_MAX_PATH_LENGTH 260

/// Creates a new, empty file for binary reading and writing and returns its descriptor. The caller closes it
/// with the runtime's close (on Windows _close) and removes the file.
/// The file is created only if its name is free, in one atomic step, so that concurrent callers in any thread
/// or process each get a file of their own. Child processes do not inherit the descriptor; on Linux only the
/// current user can open the file.
/// If `directory` is null, velGetTmpDirectory is used. If `prefix` is null, "TMP" is used; otherwise its
/// first 5 characters begin the file's name. The rest of the name is made as for VelClTmpFilename. `name` is
/// a buffer of VEL_MAX_PATH_LENGTH + 1 characters and receives the directory and the name.
/// On failure the function returns -1 and sets `name` to "". It fails when the directory is missing, is not
/// writable or leaves no room for a name of twelve characters, when the prefix contains a separator or a
/// colon, and when no free name is left.
VEL_C_API int velTmpFileCreate(const char* directory, const char* prefix, char* name);

/// Returns the directory for scratch files: the value of TMP if it is set (even if empty), else of TEMP. If
/// neither is set, the result is "C:\\" on Windows; on Linux it is the value of TMPDIR, else "/tmp". The
/// environment owns the text. A program on Linux that has more privileges than its caller (setuid, setgid,
/// capabilities) ignores these variables.
VEL_C_API const char* velGetTmpDirectory(void);

/// Tells whether a runtime file descriptor translates line breaks (text mode) or not (binary mode). On
/// Windows both functions change the mode briefly to query it, and a descriptor in any other mode, such as a
/// Unicode mode, is left in text mode. On Linux every open descriptor is in binary mode. A descriptor that is
/// not open is reported as text mode.
VEL_C_API bool velFileIsOpenedInBinaryMode(int fd);
VEL_C_API bool velFileIsOpenedInTextMode(int fd);
/// Sets the mode. A program whose output must have the same bytes on every system sets descriptor 1 to binary
/// before it writes. Returns false for a descriptor that is not open.
VEL_C_API bool velFileSetBinaryMode(int fd, bool binary);

#if defined(VEL_HAS_CLASSES)

class VelClFilename;
class VelClLocation;
class VelClTmpFilename;

/// Derives from the text of a name alone which style it has, whether it begins with a network server and
/// share, and whether it is absolute. The text is not copied: the caller keeps it alive.
class VEL_API VelClPathProperty {
 public:
  /// The path proper is the text after the server and share of a network name. It is in slash style if it
  /// contains "/", but neither "\\" nor a drive letter.
  enum VelEnPathStyle : int32_t {
    MSDOS = 0,  ///< separated by "\\"; case is ignored
    UNIX = 1    ///< separated by "/"; case matters
  };

  /// A null text counts as "".
  explicit VelClPathProperty(const char* text);

  /// Returns the whole text.
  const char* getAsCString() const { return text_; }
  /// Returns the path proper, which begins after the server and share of a network name.
  const char* getPtrToPath() const { return path_; }

  /// The style, and the case rule that follows from it.
  bool isStyleMSDOS() const { return style_ == MSDOS; }
  bool isStyleUNIX() const { return style_ == UNIX; }
  bool isCaseSensitive() const { return style_ == UNIX; }
  /// Returns '/' in slash style, else '\\'.
  char getPathSep() const { return style_ == UNIX ? '/' : '\\'; }

  /// True if the name begins with "\\\\server\\share".
  bool isUNC() const { return path_ != text_; }
  /// True if the second character of the path proper is ":", whatever the first one is.
  bool hasDrive() const;
  /// True for network names, for "/..." in slash style, and for "X:\\...". Neither "\\dir" nor "C:/dir" is
  /// absolute.
  bool isAbsolute() const;
  bool isRelative() const { return !isAbsolute(); }
  /// True if the path proper contains no "/".
  bool isNormalized() const;

  /// Replaces every "/" with "\\" in place.
  static void normalizePath(char* text);

 protected:
  VelClPathProperty();
  /// For derived classes that own the text: determine the properties of a text, copy a style, and get the
  /// path proper for writing.
  void init(const char* text);
  void copyStyle(const VelClPathProperty& other) { style_ = other.style_; }
  char* getNonConstPtrToPath() { return const_cast<char*>(path_); }
  /// Compares whole texts under this object's case rule.
  bool matches(const char* a, const char* b) const;
  /// Copies the properties that `other` found in its text; `text` is a copy of that text.
  void rebase(const VelClPathProperty& other, const char* text);

 private:
  const char* text_;
  const char* path_;
  VelEnPathStyle style_;
};

/// A file name of at most 260 characters (the rest is cut) in its own buffer, split into directory, base name
/// and extension. Comparisons follow the style of the object they are called on: in backslash style ASCII
/// case is ignored.
class VEL_API VelClFilenameABase : public VelClPathProperty {
 public:
  VelClFilenameABase(const VelClFilenameABase& other);
  VelClFilenameABase& operator=(const VelClFilenameABase& other);

  /// Returns the last component: the base name with its extension.
  const char* getName() const { return base_; }
  /// Returns the last component from its last "." on, including the dot, or "" if it does not contain a dot.
  const char* getExtension() const { return extension_; }
  /// Returns the length of the whole name in characters.
  size_t getLength() const { return static_cast<size_t>(length_); }
  /// True if the last component contains a ".".
  bool hasExtension() const { return *extension_ != '\0'; }
  /// True if a directory precedes the last component. The server and share of a network name alone are not a
  /// directory.
  bool hasPath() const { return getPtrToPath() != base_; }

  /// Compares the whole names.
  bool operator==(const VelClFilenameABase& other) const;
  /// Compares this name's directory with as many leading characters of the other's, so the other name may be
  /// in a directory below.
  bool matchesPath(const VelClFilenameABase& other) const;
  /// Compares the base names without extension, over the length of the longer one.
  bool matchesBase(const VelClFilenameABase& other) const;
  /// Compares the extension. The argument may omit the dot: "txt" and ".txt" both match "a.txt".
  bool matchesExtension(const char* extension) const;
  /// Matches the last component against a pattern with "*" and "?", see velMatchesWildcardPattern.
  bool matchesWildcardPattern(const char* pattern) const;

  /// Copy one part into a buffer of 261 characters: the directory (with server and share), the base name
  /// without extension, and "\\\\server\\share". A missing part yields "".
  void extractPath(char* out, bool withSeparator) const;
  void extractBaseName(char* out) const;
  void extractServer(char* out) const;

  /// True for a name in backslash style in which every component has at most 8 characters and the extension
  /// at most 3. The characters of the extension are not checked.
  bool isStyleFAT_8_3() const;
  /// True if the file system has an entry of this name, a file or a directory.
  bool isExistent() const;

 protected:
  /// Construct the empty name, a name from a text, from the first `length` characters of a text, and from a
  /// directory, a name and an extension.
  VelClFilenameABase();
  explicit VelClFilenameABase(const char* text);
  VelClFilenameABase(const char* text, size_t length);
  VelClFilenameABase(const char* path, const char* name, const char* extension);

  /// Set an existing object to the same.
  void init(const char* text);
  void init(const char* text, size_t length);
  /// Joins a directory, a name and, unless it is null, an extension; what does not fit is cut.
  void init(const char* path, const char* name, const char* extension);

 private:
  friend class VelClFilename;
  void copyFrom(const VelClFilenameABase& other);
  void determineParts();

  char name_[VEL_MAX_PATH_LENGTH + 1];
  char* base_;
  char* extension_;
  uint64_t length_;
};

/// A file name that can be changed. An argument may point into the name itself, null counts as "", and what
/// exceeds 260 characters is cut.
class VEL_API VelClFilename : public VelClFilenameABase {
 public:
  /// Constructs the empty name.
  VelClFilename();
  // Intentionally not explicit: a text can be passed wherever a file name is expected.
  /// The style is determined from a text, and copied from another name.
  VelClFilename(const char* text);
  VelClFilename(const VelClFilenameABase& other);
  /// Joins a directory, a name and, unless it is null, an extension. The extension "" leaves a dot at the
  /// end.
  VelClFilename(const VelClLocation& location, const char* name, const char* extension);
  VelClFilename(const VelClFilename& other) = default;

  /// Assign as the constructors do.
  VelClFilename& operator=(const char* text);
  VelClFilename& operator=(const VelClFilename& other) = default;
  VelClFilename& operator=(const VelClTmpFilename& other);

  /// Joins a directory and a name.
  void setNew(const char* path, const char* name);
  void setNew(const VelClLocation& location, const char* name);
  /// Replace the last component, or its base name only; the directory stays. setNewBaseName keeps the
  /// extension as well.
  void setNewName(const char* name);
  void setNewBaseName(const char* base);
  /// Replaces the extension. The dot is optional, and "" removes the extension. If `extension` is "tar.gz",
  /// both dots belong to the extension until the name is split again.
  void setNewExtension(const char* extension);
  /// Replace the directory; base name and extension stay.
  void setNewPath(const char* path);
  void setNewPath(const VelClLocation& location);
  /// Removes the directory. Base name, extension and style stay.
  void removePath();

 protected:
  /// Appends `text` to the whole name; the extension still begins where it did before.
  void appendAfterExtension(const char* text);
};

/// The name of a directory. It ends with a separator unless it is empty, and has at most 260 characters
/// including that separator; a longer text is cut.
class VEL_API VelClLocation : public VelClPathProperty {
 public:
  /// If `normalize` is set, every "/" after the server and share becomes "\\".
  VelClLocation(const char* text, bool normalize);
  VelClLocation(const void* text, size_t length, bool normalize);
  /// Takes the directory of a file name.
  VelClLocation(const VelClFilenameABase& file, bool normalize);
  VelClLocation(const VelClLocation& other);
  /// Assign as the constructor does, without normalizing.
  VelClLocation& operator=(const char* text);
  VelClLocation& operator=(const VelClLocation& other);

  /// Returns the length in characters, separator included.
  size_t getLength() const { return length_; }
  /// Replaces every "/" after the server and share with "\\".
  void normalize();
  /// True for the root of a drive, of a network share, or of a slash-style name.
  bool isRoot() const;
  /// True if the file system has an entry of this name.
  bool isExistent() const;

 protected:
  /// Determines the properties of the text in the buffer.
  void init(bool normalize);

 private:
  void copyText(const char* text, size_t length);
  void endWithSeparator();

  char directory_[VEL_MAX_PATH_LENGTH + 1];
  uint32_t length_;
};

/// The base class of everything that names an entry of the file system: a file or a directory.
class VEL_API VelClFileABase {
 public:
  VelClFileABase(const VelClFileABase&) = default;
  VelClFileABase& operator=(const VelClFileABase&) = default;
  virtual ~VelClFileABase();

  /// Returns the entry's name; the object owns the text.
  virtual operator const char*() const = 0;
  virtual const char* getAsCString() const = 0;
  /// True if the file system has an entry of this name.
  virtual bool isExistent() const = 0;
  /// Tell which of the two the object represents; the file system is not consulted.
  virtual bool isDirectory() const = 0;
  virtual bool isFile() const = 0;
  /// Removes the entry; returns false on failure.
  virtual bool remove() = 0;
  /// Return seconds since 1970-01-01 00:00 UTC, or 0 if the entry cannot be examined.
  virtual int64_t getDateTimeOfCreation() const = 0;
  virtual int64_t getDateTimeOfLastAccess() const = 0;
  virtual int64_t getDateTimeOfLastModification() const = 0;

  /// True if the path of a directory is not absolute, or contains ".\\" and therefore needs expansion.
  static bool isRelativePath(const char* path);
  /// Makes the path of a directory absolute and resolves its "." and ".." components, in the caller's buffer
  /// of 261 characters. `path` is in backslash style and ends with "\\"; text after the last "\\" is dropped.
  /// A component that ends in ".." goes one level up; any other component that ends in "." is removed.
  /// Returns false and sets the buffer to "" when ".." would go above the root (or above the drive or share),
  /// or when the result is too long. The drive of "C:dir\\" is treated as part of that component.
  static bool expandRelativePath(char* path);

 protected:
  VelClFileABase();
  /// Return a time of the entry `name` in seconds since 1970-01-01 00:00 UTC, or 0 if it cannot be examined.
  int64_t getDateTimeOfCreation(const char* name) const;
  int64_t getDateTimeOfLastAccess(const char* name) const;
  int64_t getDateTimeOfLastModification(const char* name) const;
};

/// A file. An operation that fails returns false and stores the reason in getLastError; one that succeeds
/// clears it. No operation throws.
class VEL_API VelClFile : public VelClFileABase {
 public:
  /// `defaultType`, unless it is null, becomes the extension of a name without one.
  VelClFile(const VelClFilenameABase& name, const char* defaultType);
  VelClFile(const char* name, const char* defaultType) : VelClFile(VelClFilename(name), defaultType) {}
  VelClFile(const VelClFile&) = default;
  VelClFile& operator=(const VelClFile&) = default;
  ~VelClFile() override;

  operator const char*() const override;
  const char* getAsCString() const override;
  bool isExistent() const override;
  /// Always false.
  bool isDirectory() const override;
  /// Always true.
  bool isFile() const override;
  /// Removes the file, even a read-only one; never removes a directory. Fails with FILE_COULD_NOT_REMOVE and
  /// class IO_NOT_EXISTENT or IO_PERMISSION_DENIED.
  bool remove() override;
  int64_t getDateTimeOfCreation() const override;
  int64_t getDateTimeOfLastAccess() const override;
  int64_t getDateTimeOfLastModification() const override;

  /// The name, and the error of the last operation.
  const VelClFilename& getFilename() const { return filename_; }
  const _VelStError& getLastError() const { return lastError_; }
  /// Returns the extension without its dot, or "".
  const char* getFileType() const;
  /// Replaces the extension, see VelClFilename::setNewExtension.
  void setFileType(const char* type);
  /// True for a hidden file, and for a missing one as well. On Linux a leading dot hides a file.
  bool isHidden() const;
  /// True if the file is not writable, and for a missing file as well.
  bool isReadOnly() const;
  /// Sets or clears the read-only attribute. On Linux only the write permissions change.
  void setReadOnly(bool readOnly);
  /// Returns the size. In bytes, 32 bits (a larger size wraps); 0 if the file cannot be examined.
  unsigned long getFileSize() const;

  /// Copies the file, replacing an existing target. Without `keepAttributes` the copy is writable even if
  /// this file is read-only. Fails with FILE_COULD_NOT_COPY and IO_PROBLEM, or with FILE_COULD_NOT_COPY_SELF
  /// and INCONSISTENT_SITUATION when the target has this file's name. The copy is written to a new file
  /// beside the target, which then replaces the target: a failed copy leaves the old file as it was, and a
  /// link is replaced, not followed. Only in a directory where no file can be created is an existing target
  /// overwritten in place.
  bool copyTo(const VelClFilenameABase& target, bool keepAttributes);
  bool copyTo(const char* target, bool keepAttributes) {
    return copyTo(VelClFilename(target), keepAttributes);
  }
  /// Copies into a directory, under the same name.
  bool copyTo(const VelClLocation& directory, bool keepAttributes);
  /// Renames the file and adopts the new name. An existing target is refused with FILE_COULD_NOT_RENAME and
  /// IO_ALREADY_IN_USE; other failures have class IO_PERMISSION_DENIED.
  bool renameAs(const VelClFilenameABase& newName);
  bool renameAs(const char* newName) { return renameAs(VelClFilename(newName)); }

 protected:
  /// Looks for `file` as given, then for its last component in each directory of the ";"-separated
  /// environment variable; a directory that leaves no room for the component is skipped. On failure `file`
  /// names the last directory tried.
  bool determineFileInEnvVarPath(VelClFilename& file, const char* variableName) const;
  /// For derived classes that find the file under another name than the one given.
  void setFilename(const VelClFilenameABase& name) { filename_ = name; }
  /// Store an error, or clear the last one; they return false and true.
  bool fail(unsigned long id, VelEnErrorClass errorClass);
  bool succeed();

 private:
  VelClFilename filename_;
  _VelStError lastError_;
};

/// A file name that was free when the object was constructed: up to 5 characters of a prefix, random
/// characters up to a total of 8, a dot, and the last three digits of the process identifier, units first. No
/// file is created, and objects constructed within the same millisecond get the same name; velTmpFileCreate
/// has neither weakness.
/// Names are tried until one is free. If the directory leaves no room for the random characters, or all names
/// are in use, the search gives up after some repetitions; the name then exists already, or is cut.
class VEL_API VelClTmpFilename : public VelClFilename {
 public:
  /// Uses velGetTmpDirectory and the prefix "TMP".
  VelClTmpFilename();
  /// A null prefix counts as "", which makes all 8 characters random.
  explicit VelClTmpFilename(const char* prefix);
  /// Use another directory; the prefix defaults to "TMP".
  explicit VelClTmpFilename(const VelClLocation& directory);
  VelClTmpFilename(const VelClLocation& directory, const char* prefix);
  VelClTmpFilename(const char* directory, const char* prefix);
  /// Uses the directory of `model`.
  VelClTmpFilename(const VelClFilename& model, const char* prefix);

 private:
  void initPrefix(const char* prefix);
};

/// The name of a file's backup copy: the whole name followed by ".BAK". The extension of "a.txt.BAK" is
/// ".txt.BAK", that of "a.BAK" is ".BAK". Characters beyond 260 are cut, so a name of 260 characters is its
/// own backup name.
class VEL_API VelClBakFilename : public VelClFilename {
 public:
  /// Constructs the backup name of `name`.
  explicit VelClBakFilename(const VelClFilenameABase& name);
};

/// A directory, named by an absolute name in backslash style that ends with "\\". The text is otherwise
/// unchanged: "C:\\\\" keeps its two separators, and "C:/a/", whose style requires a backslash at the end,
/// gives "C:\\a\\\\".
/// An operation that fails returns false and stores the reason in getLastError; one that succeeds clears it.
/// No operation throws. A name that cannot be made absolute, or that would exceed 260 characters with its
/// separator, is refused: the object is constructed with the name "" and DIRECTORY_EXPANSION_FAILED of class
/// IO_INVALID_NAME.
class VEL_API VelClDirectory : public VelClFileABase {
 public:
  /// Names the current directory.
  VelClDirectory();
  /// "/" becomes "\\", and a relative name is expanded from the current directory, see expandRelativePath. On
  /// Linux "/dir" becomes "C:\\dir\\". "" is the current directory.
  explicit VelClDirectory(const char* name);
  explicit VelClDirectory(const VelClLocation& name);
  VelClDirectory(const VelClDirectory&) = default;
  VelClDirectory& operator=(const VelClDirectory&) = default;
  ~VelClDirectory() override;

  operator const char*() const override;
  const char* getAsCString() const override;
  /// True if the file system has an entry of this name.
  bool isExistent() const override;
  /// Always true.
  bool isDirectory() const override;
  /// Always false.
  bool isFile() const override;
  /// Same as removeAll(false): removes an empty directory.
  bool remove() override;
  int64_t getDateTimeOfCreation() const override;
  int64_t getDateTimeOfLastAccess() const override;
  int64_t getDateTimeOfLastModification() const override;

  /// The name, and the error of the last operation.
  const VelClLocation& getName() const { return name_; }
  const _VelStError& getLastError() const { return lastError_; }
  /// Returns the number of "\\" minus one: 2 for "C:\\a\\b\\". The separators of a server and share are
  /// counted too. 0 for "".
  unsigned int getNumOfSubDirs() const;

  /// Creates every directory of the name that does not exist; those created stay if a later one fails. Fails
  /// with DIRECTORY_COULD_NOT_CREATE and class IO_NOT_EXISTENT.
  bool create();
  /// Makes this the current directory of the process, for all threads. Fails with DIRECTORY_COULD_NOT_CHANGE
  /// and class IO_NOT_EXISTENT.
  bool setAsCurrent();
  /// Appends `sub`, whose "..\\" components go up again; its server and share are ignored. If that goes above
  /// the root or the name gets too long, the name becomes "" and the error is DIRECTORY_EXPANSION_FAILED.
  void attachSubDir(const VelClLocation& sub);
  /// Go up one level, or `count` levels. At the root they fail with DIRECTORY_COULD_NOT_DETACH and class
  /// LOGIC; levels that were already removed are not restored.
  bool detachLastSubDir();
  bool detachSubDirs(unsigned int count);

  /// Removes the directory, which must be empty unless `withContents` is set. Fails with
  /// DIRECTORY_COULD_NOT_REMOVE and class IO_STILL_IN_USE if access is denied, otherwise IO_INVALID_NAME.
  /// Contents are removed one by one up to the first entry that cannot be removed, which on Windows includes
  /// a read-only file; entries removed before that are lost. A subdirectory whose name has a "." as its first
  /// or second character is kept with its contents, and so is everything more than 256 levels below; either
  /// makes the removal fail. A root keeps its contents, because it cannot be removed itself: the root of the
  /// process, on Windows of the drive, or of the share in the name. Whether it is a root is decided by the
  /// directory that was opened, not by its spelling.
  /// Links and junctions are never followed: they are removed themselves, even if one replaces a directory
  /// while the removal runs, or has this directory's name. Names may have any length.
  bool removeAll(bool withContents);

  /// Same as isRelativePath and expandRelativePath.
  static bool isRelativeDirectory(const char* path);
  static bool expandRelativeDirectory(char* path);

 private:
  bool fail(unsigned long id, VelEnErrorClass errorClass);
  bool succeed();
  void setNewName(const char* begin, const char* rest);

  VelClLocation name_;
  _VelStError lastError_;
};

/// Lists the entries of one directory, including "." and "..", in the order of the system. Errors are stored
/// in the caller's record, which must outlive the walker; no function throws.
/// A link or junction is listed as such and not followed: it is not a directory. A name of more than 260
/// characters is cut.
class VEL_API VelClOSSDirectoryWalker {
 public:
  /// Moves to the first entry. If the directory cannot be listed the walker is invalid, with
  /// DIRWALK_COULD_NOT_INIT and class IO_PROBLEM. The empty name means the current directory.
  VelClOSSDirectoryWalker(const VelClLocation& directory, _VelStError& error);
  VelClOSSDirectoryWalker(const VelClOSSDirectoryWalker&) = delete;
  VelClOSSDirectoryWalker& operator=(const VelClOSSDirectoryWalker&) = delete;
  ~VelClOSSDirectoryWalker();

  /// True while the walker is on an entry. On an invalid walker the queries below return false and the
  /// entry's name is "".
  bool isValid() const { return valid_; }
  /// Moves to the next entry. Returns false after the last entry, which is not an error, and when the listing
  /// breaks off, with DIRWALK_NO_CONTINUATION and class IO_PROBLEM.
  bool setToNext();

  /// The attributes of the entry; on Linux they are those of VelClFile.
  bool isDirectory() const;
  bool isHidden() const;
  bool isReadOnly() const;
  /// True for a directory named ".".
  bool isCurrentDirectory() const;
  /// True for a directory whose name begins with "..".
  bool isParentDirectory() const;
  /// True for a directory unless the first or second character of its name is ".": false for ".cache" and
  /// "a.b".
  bool isSubDirectory() const;
  /// The entry's name alone, and preceded by the directory's name. The walker owns both texts; they change
  /// with the next move.
  const char* getBaseName() const { return name_; }
  const char* getFullName() const { return buffer_; }

 private:
  bool fetchNext();
  void close();

  char buffer_[2 * VEL_MAX_PATH_LENGTH + 1];
  char* name_;
  bool valid_;
  _VelStError& error_;
  void* search_;
  uint32_t listed_;
  uint32_t attributes_;
};

/// Iterates over the entries of a directory:
///
///   for (VelClDirectoryWalk walk(directory); walk.isValid(); walk.setToNext())
///     if (walk.isFile()) std::puts(walk.getNameWithPath());
///
/// Everything said about VelClOSSDirectoryWalker applies here.
class VEL_API VelClDirectoryWalk {
 public:
  /// Moves to the first entry, if there is one.
  explicit VelClDirectoryWalk(const VelClDirectory& directory);
  explicit VelClDirectoryWalk(const VelClLocation& directory);
  VelClDirectoryWalk(const VelClDirectoryWalk&) = delete;
  VelClDirectoryWalk& operator=(const VelClDirectoryWalk&) = delete;
  ~VelClDirectoryWalk();

  /// Query and move the walker, see VelClOSSDirectoryWalker.
  bool isValid() const { return walker_.isValid(); }
  bool setToNext() { return walker_.setToNext(); }
  bool isDirectory() const { return walker_.isDirectory(); }
  /// True if the entry is anything but a directory.
  bool isFile() const { return walker_.isValid() && !walker_.isDirectory(); }
  /// See VelClOSSDirectoryWalker.
  bool isHidden() const { return walker_.isHidden(); }
  bool isReadOnly() const { return walker_.isReadOnly(); }
  bool isCurrentDirectory() const { return walker_.isCurrentDirectory(); }
  bool isParentDirectory() const { return walker_.isParentDirectory(); }
  bool isSubDirectory() const { return walker_.isSubDirectory(); }
  /// The entry's name, preceded by the directory's name and alone; both texts change with the next move.
  const char* getNameWithPath() const { return walker_.getFullName(); }
  const char* getNameWithoutPath() const { return walker_.getBaseName(); }
  /// Matches the entry's name against a pattern with "*" and "?", see velMatchesWildcardPattern. Case matters
  /// only if the directory's name is in slash style.
  bool matchesWildcardPattern(const char* pattern) const;
  /// The error of the constructor or of the last move.
  const _VelStError& getLastError() const { return error_; }

 private:
  _VelStError error_;
  VelClOSSDirectoryWalker walker_;
  bool caseSensitive_;
};

#endif

#endif
