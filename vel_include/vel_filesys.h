// Names of files and directories, files, directories and walks over them. Back-slash names work on every
// system: on Linux the drive is dropped, "\\" becomes "/", and a component that does not exist as written is
// looked for ignoring ASCII letter case; the server and share of a network name become directories. Names in
// slash style pass to the system as they are.
#ifndef VEL_FILESYS_H_
#define VEL_FILESYS_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_error.h"
#include "vel_export.h"

/// The longest name of a file or directory, in characters; longer texts are cut. Buffers that
/// functions below write to hold one character more.
#define VEL_MAX_PATH_LENGTH 260

/// Makes a new file for reading and writing bytes and returns its descriptor, which the caller closes with
/// the runtime's close (on Windows _close). The file is made only if its name is free, in one step of the
/// system: however many threads and processes ask at once, each gets a file of its own. Children do not
/// inherit the descriptor; on Linux only the user can open the file. The caller removes the file.
/// `directory` may be null: velGetTmpDirectory then. `prefix` may be null: "TMP" then; otherwise its first 5
/// characters begin the file's name, which is made like that of a VelClTmpFilename. `name` is a buffer of
/// VEL_MAX_PATH_LENGTH + 1 characters and receives directory and name.
/// On failure -1 is returned, and `name` is "": the directory is missing, cannot be written to, or
/// leaves no room for a name of twelve characters, the prefix holds a separator or a colon, or the names are
/// used up.
VEL_C_API int velTmpFileCreate(const char* directory, const char* prefix, char* name);

/// The directory for scratch files: the value of TMP when set (even when empty), else of TEMP, else
/// "C:\\" on Windows; on Linux TMPDIR and "/tmp" follow TEMP. The text belongs to the environment. In a
/// program on Linux that has more rights than its caller (setuid, setgid, capabilities) these variables are
/// ignored.
VEL_C_API const char* velGetTmpDirectory(void);

/// Whether a runtime file descriptor translates line breaks (text mode) or not (binary mode). On
/// Windows both set the mode for a moment, and a descriptor in any other mode, such as a
/// Unicode one, ends up in text mode. On Linux every open descriptor is in binary mode. A
/// descriptor that is not open counts as in text mode.
VEL_C_API bool velFileIsOpenedInBinaryMode(int fd);
VEL_C_API bool velFileIsOpenedInTextMode(int fd);
/// Chooses the mode; programs whose output must be the same bytes on every system set
/// descriptor 1 to binary before they write. False for a descriptor that is not open.
VEL_C_API bool velFileSetBinaryMode(int fd, bool binary);

#if defined(VEL_HAS_CLASSES)

class VelClFilename;
class VelClLocation;
class VelClTmpFilename;

/// Decides from a name's text alone which style it has, whether it begins with a network server and
/// share, and whether it is absolute. The text is not copied: its owner keeps it alive.
class VEL_API VelClPathProperty {
 public:
  /// A path proper with a "/", without a "\\" and without a drive's letter is in the slash style.
  enum VelEnPathStyle : int32_t {
    MSDOS = 0,  ///< separated by "\\", letter case does not count
    UNIX = 1    ///< separated by "/", letter case counts
  };

  /// Null counts as "".
  explicit VelClPathProperty(const char* text);

  /// The whole text.
  const char* getAsCString() const { return text_; }
  /// The path proper, behind the server and share of a network name.
  const char* getPtrToPath() const { return path_; }

  /// The style, by its name and by its rule for letter case.
  bool isStyleMSDOS() const { return style_ == MSDOS; }
  bool isStyleUNIX() const { return style_ == UNIX; }
  bool isCaseSensitive() const { return style_ == UNIX; }
  /// '/' in the slash style, else '\\'.
  char getPathSep() const { return style_ == UNIX ? '/' : '\\'; }

  /// Whether the name begins with "\\\\server\\share".
  bool isUNC() const { return path_ != text_; }
  /// Whether the second character of the path proper is ":", whatever the first is.
  bool hasDrive() const;
  /// True for network names, for "/..." in the slash style and for "X:\\...". Neither "\\dir" nor
  /// "C:/dir" is absolute.
  bool isAbsolute() const;
  bool isRelative() const { return !isAbsolute(); }
  /// Whether the path proper holds no "/".
  bool isNormalized() const;

  /// Replaces every "/" by "\\" in place.
  static void normalizePath(char* text);

 protected:
  VelClPathProperty();
  /// Determine the properties of a text, take over a style, and the path proper for those who own the text.
  void init(const char* text);
  void copyStyle(const VelClPathProperty& other) { style_ = other.style_; }
  char* getNonConstPtrToPath() { return const_cast<char*>(path_); }
  /// Equality of whole texts under this object's case rule.
  bool matches(const char* a, const char* b) const;
  /// Takes over what `other` found in its text, for `text`, a copy of it.
  void rebase(const VelClPathProperty& other, const char* text);

 private:
  const char* text_;
  const char* path_;
  VelEnPathStyle style_;
};

/// A file name of at most 260 characters (the rest is cut) in a buffer of its own, split into directory, base
/// name and extension. Comparisons follow the style of the object that is asked: in the back-slash style
/// ASCII letter case does not count.
class VEL_API VelClFilenameABase : public VelClPathProperty {
 public:
  VelClFilenameABase(const VelClFilenameABase& other);
  VelClFilenameABase& operator=(const VelClFilenameABase& other);

  /// The last component: base name with extension.
  const char* getName() const { return base_; }
  /// From the last "." of the last component on, that dot included; "" without one.
  const char* getExtension() const { return extension_; }
  /// In characters.
  size_t getLength() const { return static_cast<size_t>(length_); }
  /// Whether the last component has a ".".
  bool hasExtension() const { return *extension_ != '\0'; }
  /// Whether a directory stands before the last component. The server and share of a network name
  /// alone don't count.
  bool hasPath() const { return getPtrToPath() != base_; }

  /// Compares the whole names.
  bool operator==(const VelClFilenameABase& other) const;
  /// Compares this directory with as many characters of the other's: the other may lie deeper.
  bool matchesPath(const VelClFilenameABase& other) const;
  /// Compares the base names without extension, over the length of the longer one.
  bool matchesBase(const VelClFilenameABase& other) const;
  /// "txt" and ".txt" both match "a.txt".
  bool matchesExtension(const char* extension) const;
  /// The last component against "*" and "?", see velMatchesWildcardPattern.
  bool matchesWildcardPattern(const char* pattern) const;

  /// Copy one part into a buffer of 261 characters: the directory (with server and share), the base
  /// name without extension, and "\\\\server\\share". A part that is missing gives "".
  void extractPath(char* out, bool withSeparator) const;
  void extractBaseName(char* out) const;
  void extractServer(char* out) const;

  /// Whether every component has the form of at most 8 characters and the extension of at most 3,
  /// in the back-slash style. The extension's own characters are not looked at.
  bool isStyleFAT_8_3() const;
  /// Whether the file system has an entry of this name, a file or a directory.
  bool isExistent() const;

 protected:
  /// Names of nothing, of a text, of its first characters, and of a directory, a name and an extension.
  VelClFilenameABase();
  explicit VelClFilenameABase(const char* text);
  VelClFilenameABase(const char* text, size_t length);
  VelClFilenameABase(const char* path, const char* name, const char* extension);

  /// The same for an object that exists.
  void init(const char* text);
  void init(const char* text, size_t length);
  /// Joins directory, name and, unless null, extension; whatever does not fit is cut.
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

/// A file name that can be changed. Texts may be part of the name itself, null counts as "", and
/// whatever exceeds 260 characters is cut.
class VEL_API VelClFilename : public VelClFilenameABase {
 public:
  /// The empty name.
  VelClFilename();
  // Not explicit: a text stands for a file name wherever one is asked for.
  /// The style is determined anew from a text, and taken over from a name.
  VelClFilename(const char* text);
  VelClFilename(const VelClFilenameABase& other);
  /// Joins a directory, a name and, unless null, an extension. An extension of "" leaves a dot at
  /// the end.
  VelClFilename(const VelClLocation& location, const char* name, const char* extension);
  VelClFilename(const VelClFilename& other) = default;

  /// As the constructors.
  VelClFilename& operator=(const char* text);
  VelClFilename& operator=(const VelClFilename& other) = default;
  VelClFilename& operator=(const VelClTmpFilename& other);

  /// Directory and name, joined.
  void setNew(const char* path, const char* name);
  void setNew(const VelClLocation& location, const char* name);
  /// Keep the directory; setNewBaseName keeps the extension too.
  void setNewName(const char* name);
  void setNewBaseName(const char* base);
  /// With or without its dot; "" removes the extension. Of "tar.gz" both dots belong to the extension,
  /// until the name is split anew.
  void setNewExtension(const char* extension);
  /// Keep base name and extension.
  void setNewPath(const char* path);
  void setNewPath(const VelClLocation& location);
  /// Leaves the base name with extension, and keeps the style.
  void removePath();

 protected:
  /// Puts `text` behind the whole name; the extension still begins where it did.
  void appendBehindExtension(const char* text);
};

/// A directory's name. It ends with a separator unless it is empty, and has at most 260 characters
/// with it; longer texts are cut.
class VEL_API VelClLocation : public VelClPathProperty {
 public:
  /// `normalize` turns "/" into "\\" behind the server part.
  VelClLocation(const char* text, bool normalize);
  VelClLocation(const void* text, size_t length, bool normalize);
  /// The directory of a file name.
  VelClLocation(const VelClFilenameABase& file, bool normalize);
  VelClLocation(const VelClLocation& other);
  /// As the constructor, without normalizing.
  VelClLocation& operator=(const char* text);
  VelClLocation& operator=(const VelClLocation& other);

  /// In characters.
  size_t getLength() const { return length_; }
  /// Turns "/" into "\\" behind the server part.
  void normalize();
  /// Whether the name is the root of a drive, of a network share or of a slash-style name.
  bool isRoot() const;
  /// Whether the file system has an entry of this name.
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

/// What stands for an entry of the file system: a file or a directory.
class VEL_API VelClFileABase {
 public:
  VelClFileABase(const VelClFileABase&) = default;
  VelClFileABase& operator=(const VelClFileABase&) = default;
  virtual ~VelClFileABase();

  /// The entry's name; owned by the object.
  virtual operator const char*() const = 0;
  virtual const char* getAsCString() const = 0;
  /// Whether the file system has an entry of this name.
  virtual bool isExistent() const = 0;
  /// Which of the two the object stands for, whatever the file system has.
  virtual bool isDirectory() const = 0;
  virtual bool isFile() const = 0;
  /// Removes the entry; false when that fails.
  virtual bool remove() = 0;
  /// Seconds since 1970-01-01 00:00 UTC, or 0 when the entry cannot be examined.
  virtual int64_t getDateTimeOfCreation() const = 0;
  virtual int64_t getDateTimeOfLastAccess() const = 0;
  virtual int64_t getDateTimeOfLastModification() const = 0;

  /// Whether a directory's path is not absolute, or holds ".\\" and so needs expansion.
  static bool isRelativePath(const char* path);
  /// Makes a directory's path absolute and resolves its "." and ".." components, in the caller's
  /// buffer of 261 characters. `path` is in the back-slash style and ends with "\\"; text behind
  /// the last "\\" is dropped. Any component that ends in ".." goes one level up, any other that
  /// ends in "." is left out. False, with "" in the buffer, when ".." leads above the root (or above
  /// the drive or share), or the result is too long. The drive of "C:dir\\" is taken for a part of
  /// the component.
  static bool expandRelativePath(char* path);

 protected:
  VelClFileABase();
  /// The times of any entry by its name.
  int64_t getDateTimeOfCreation(const char* name) const;
  int64_t getDateTimeOfLastAccess(const char* name) const;
  int64_t getDateTimeOfLastModification(const char* name) const;
};

/// A file. Operations that fail return false and leave the reason in getLastError; one that succeeds
/// clears it. Nothing throws.
class VEL_API VelClFile : public VelClFileABase {
 public:
  /// `defaultType`, unless null, becomes the extension of a name without one.
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
  /// Removes the file, also a read-only one; never a directory. FILE_COULD_NOT_REMOVE with class
  /// IO_NOT_EXISTENT or IO_PERMISSION_DENIED.
  bool remove() override;
  int64_t getDateTimeOfCreation() const override;
  int64_t getDateTimeOfLastAccess() const override;
  int64_t getDateTimeOfLastModification() const override;

  /// The name, and the failure of the last operation.
  const VelClFilename& getFilename() const { return filename_; }
  const _VelStError& getLastError() const { return lastError_; }
  /// The extension without its dot, or "".
  const char* getFileType() const;
  /// See VelClFilename::setNewExtension.
  void setFileType(const char* type);
  /// True for a missing file as well. On Linux a leading dot hides a file.
  bool isHidden() const;
  /// Whether the file cannot be written; true for a missing file as well.
  bool isReadOnly() const;
  /// On Linux only the write permissions change.
  void setReadOnly(bool readOnly);
  /// In bytes, 32 bits (a larger size wraps); 0 when the file cannot be examined.
  unsigned long getFileSize() const;

  /// Copies the file over an existing target. Without `keepAttributes` the copy can be written even
  /// when this file is read-only. FILE_COULD_NOT_COPY with IO_PROBLEM, or FILE_COULD_NOT_COPY_SELF
  /// with INCONSISTENT_SITUATION when the target has this file's name. The copy is made beside the target
  /// and takes its place, so that a failed one leaves the old file; a link is replaced itself. Only in a
  /// directory that takes no new file is an existing target overwritten in place.
  bool copyTo(const VelClFilenameABase& target, bool keepAttributes);
  bool copyTo(const char* target, bool keepAttributes) {
    return copyTo(VelClFilename(target), keepAttributes);
  }
  /// Into a directory, under the same name.
  bool copyTo(const VelClLocation& directory, bool keepAttributes);
  /// Renames the file and takes over the new name. An existing target is refused:
  /// FILE_COULD_NOT_RENAME with IO_ALREADY_IN_USE, otherwise IO_PERMISSION_DENIED.
  bool renameAs(const VelClFilenameABase& newName);
  bool renameAs(const char* newName) { return renameAs(VelClFilename(newName)); }

 protected:
  /// Looks for `file` as it is, then under its last component in each directory of the ";"-separated
  /// variable; a directory that leaves no room for it is passed over. On failure the name is left in
  /// the last directory tried.
  bool determineFileInEnvVarPath(VelClFilename& file, const char* variableName) const;
  /// For classes that find their file elsewhere than under the name they were given.
  void setFilename(const VelClFilenameABase& name) { filename_ = name; }
  /// Keep a failure, or clear the last one; they return false and true.
  bool fail(unsigned long id, VelEnErrorClass errorClass);
  bool succeed();

 private:
  VelClFilename filename_;
  _VelStError lastError_;
};

/// A file name that was free when the object was built: up to 5 characters of a prefix, random ones up to
/// 8, a dot, and the last three digits of the process identifier, units first. Nothing is created, and
/// objects built in the same millisecond get the same name; velTmpFileCreate has neither weakness.
/// The search tries names until one is free. When the directory leaves no room for the random characters,
/// or all names are taken, it gives up after some repetitions: the name then exists, or is cut.
class VEL_API VelClTmpFilename : public VelClFilename {
 public:
  /// In velGetTmpDirectory, with the prefix "TMP".
  VelClTmpFilename();
  /// Null counts as "", which makes all 8 characters random.
  explicit VelClTmpFilename(const char* prefix);
  /// In another directory; without a prefix it is "TMP".
  explicit VelClTmpFilename(const VelClLocation& directory);
  VelClTmpFilename(const VelClLocation& directory, const char* prefix);
  VelClTmpFilename(const char* directory, const char* prefix);
  /// In the directory of `model`.
  VelClTmpFilename(const VelClFilename& model, const char* prefix);

 private:
  void initPrefix(const char* prefix);
};

/// The name of a file's backup copy: ".BAK" behind the whole name. The extension of "a.txt.BAK" is
/// ".txt.BAK", that of "a.BAK" is ".BAK". What exceeds 260 characters is cut, so that a name of 260
/// characters stays as it is.
class VEL_API VelClBakFilename : public VelClFilename {
 public:
  /// The backup name of `name`.
  explicit VelClBakFilename(const VelClFilenameABase& name);
};

/// A directory, by an absolute name in back-slash style that ends with "\\". The text is otherwise kept:
/// "C:\\\\" has two separators, and "C:/a/", whose style asks for a back-slash at the end, gives "C:\\a\\\\".
/// Operations that fail return false and leave the reason in getLastError; one that succeeds clears it.
/// Nothing throws. A name that cannot be made absolute, or would exceed 260 characters with its separator, is
/// refused: the object is built with the name "" and DIRECTORY_EXPANSION_FAILED with class IO_INVALID_NAME.
class VEL_API VelClDirectory : public VelClFileABase {
 public:
  /// The current directory.
  VelClDirectory();
  /// "/" becomes "\\", and a relative name is expanded as expandRelativePath says, from the current
  /// directory. On Linux "/dir" becomes "C:\\dir\\". "" is the current directory.
  explicit VelClDirectory(const char* name);
  explicit VelClDirectory(const VelClLocation& name);
  VelClDirectory(const VelClDirectory&) = default;
  VelClDirectory& operator=(const VelClDirectory&) = default;
  ~VelClDirectory() override;

  operator const char*() const override;
  const char* getAsCString() const override;
  /// Whether the file system has an entry of this name.
  bool isExistent() const override;
  /// Always true.
  bool isDirectory() const override;
  /// Always false.
  bool isFile() const override;
  /// removeAll(false).
  bool remove() override;
  int64_t getDateTimeOfCreation() const override;
  int64_t getDateTimeOfLastAccess() const override;
  int64_t getDateTimeOfLastModification() const override;

  /// The name, and the failure of the last operation.
  const VelClLocation& getName() const { return name_; }
  const _VelStError& getLastError() const { return lastError_; }
  /// The number of "\\" less one: "C:\\a\\b\\" has 2. Those of a server and share count too. 0 for "".
  unsigned int getNumOfSubDirs() const;

  /// Makes every directory of the name that does not exist; what was made stays when a later one fails.
  /// DIRECTORY_COULD_NOT_CREATE with class IO_NOT_EXISTENT.
  bool create();
  /// Makes this the process's current directory, for all threads. DIRECTORY_COULD_NOT_CHANGE with
  /// class IO_NOT_EXISTENT.
  bool setAsCurrent();
  /// Goes into `sub`, whose "..\\" components lead up again; its server and share are left out. Leading
  /// above the root, or a name that is too long, leaves the name "" and DIRECTORY_EXPANSION_FAILED.
  void attachSubDir(const VelClLocation& sub);
  /// Go up one level, or `count` levels. DIRECTORY_COULD_NOT_DETACH with class LOGIC at the root;
  /// levels already left stay left.
  bool detachLastSubDir();
  bool detachSubDirs(unsigned int count);

  /// Removes the directory, which must be empty, or with its contents. DIRECTORY_COULD_NOT_REMOVE with class
  /// IO_STILL_IN_USE when access is denied, otherwise IO_INVALID_NAME.
  /// Contents go one by one until the first that cannot be removed; what is gone then is gone. On
  /// Windows that is so for a read-only file. A directory below whose name has a "." as its first or
  /// second character is kept with its contents, and so is what lies more than 256 levels below; either
  /// makes the removal fail. A root keeps its contents, as it cannot be removed: the root of the process, on
  /// Windows of the drive, or that of the share in the name. What was opened decides, not how it is spelled.
  /// Links and junctions are never followed: they are removed themselves, also when they take a
  /// directory's place while the removal runs, or have this directory's name. Names may have any length.
  bool removeAll(bool withContents);

  /// The same as isRelativePath and expandRelativePath.
  static bool isRelativeDirectory(const char* path);
  static bool expandRelativeDirectory(char* path);

 private:
  bool fail(unsigned long id, VelEnErrorClass errorClass);
  bool succeed();
  void setNewName(const char* begin, const char* rest);

  VelClLocation name_;
  _VelStError lastError_;
};

/// Lists the entries of one directory, "." and ".." among them, in the system's order. Failures go to the
/// caller's record, which outlives the walker; nothing throws.
/// A link or junction is listed as what it is, not as what it leads to: it is no directory. A name above 260
/// characters is cut.
class VEL_API VelClOSSDirectoryWalker {
 public:
  /// Stands at the first entry, or is not valid after DIRWALK_COULD_NOT_INIT with class IO_PROBLEM.
  /// The empty name stands for the current directory.
  VelClOSSDirectoryWalker(const VelClLocation& directory, _VelStError& error);
  VelClOSSDirectoryWalker(const VelClOSSDirectoryWalker&) = delete;
  VelClOSSDirectoryWalker& operator=(const VelClOSSDirectoryWalker&) = delete;
  ~VelClOSSDirectoryWalker();

  /// Whether the walker stands at an entry. When it does not, the answers below are false and the entry's
  /// name is "".
  bool isValid() const { return valid_; }
  /// False behind the last entry, which is no error, and when the listing breaks off:
  /// DIRWALK_NO_CONTINUATION with class IO_PROBLEM.
  bool setToNext();

  /// The entry's attributes; see VelClFile for what they are on Linux.
  bool isDirectory() const;
  bool isHidden() const;
  bool isReadOnly() const;
  /// A directory named ".".
  bool isCurrentDirectory() const;
  /// A directory whose name begins with "..".
  bool isParentDirectory() const;
  /// A directory whose name has no "." as its first or second character: neither ".cache" nor "a.b".
  bool isSubDirectory() const;
  /// The entry's name, and the same behind the directory's. Both belong to the walker and change
  /// with the next step.
  const char* getBaseName() const { return name_; }
  const char* getFullName() const { return buffer_; }

 private:
  bool takeNext();
  void close();

  char buffer_[2 * VEL_MAX_PATH_LENGTH + 1];
  char* name_;
  bool valid_;
  _VelStError& error_;
  void* search_;
  uint32_t listed_;
  uint32_t attributes_;
};

/// A walk over a directory's entries:
///
///   for (VelClDirectoryWalk walk(directory); walk.isValid(); walk.setToNext())
///     if (walk.isFile()) std::puts(walk.getNameWithPath());
///
/// Everything said about VelClOSSDirectoryWalker holds here.
class VEL_API VelClDirectoryWalk {
 public:
  /// Stands at the first entry, if there is one.
  explicit VelClDirectoryWalk(const VelClDirectory& directory);
  explicit VelClDirectoryWalk(const VelClLocation& directory);
  VelClDirectoryWalk(const VelClDirectoryWalk&) = delete;
  VelClDirectoryWalk& operator=(const VelClDirectoryWalk&) = delete;
  ~VelClDirectoryWalk();

  /// These ask and move the walker, see there.
  bool isValid() const { return walker_.isValid(); }
  bool setToNext() { return walker_.setToNext(); }
  bool isDirectory() const { return walker_.isDirectory(); }
  /// Whether the entry is anything but a directory.
  bool isFile() const { return walker_.isValid() && !walker_.isDirectory(); }
  /// See the walker.
  bool isHidden() const { return walker_.isHidden(); }
  bool isReadOnly() const { return walker_.isReadOnly(); }
  bool isCurrentDirectory() const { return walker_.isCurrentDirectory(); }
  bool isParentDirectory() const { return walker_.isParentDirectory(); }
  bool isSubDirectory() const { return walker_.isSubDirectory(); }
  /// The entry's name, behind the directory's and alone; both change with the next step.
  const char* getNameWithPath() const { return walker_.getFullName(); }
  const char* getNameWithoutPath() const { return walker_.getBaseName(); }
  /// The entry's name against "*" and "?", see velMatchesWildcardPattern. Letter case counts if the
  /// directory's name is in the slash style.
  bool matchesWildcardPattern(const char* pattern) const;
  /// Of the start or the last step.
  const _VelStError& getLastError() const { return error_; }

 private:
  _VelStError error_;
  VelClOSSDirectoryWalker walker_;
  bool caseSensitive_;
};

#endif

#endif
