// Paths of any length in UTF-8, in slash style and in backslash style on every system.
//
// The style of VelClFilename depends on the text; that of a path is chosen when the path is made, and stays.
// Both are split and joined by the same rules, with these differences, each of which keeps a path what it is
// when a part of it is replaced:
//
// - in backslash style "/" is a separator as well, also beside "\\";
// - "C:" is never a part of the last component;
// - the dots at the start of a component do not begin an extension: ".profile" and ".." have none.
//
// Only the text is examined, except where a function says that it asks the system.
#ifndef VEL_PATH_H_
#define VEL_PATH_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"
#include "vel_status.h"

#if defined(VEL_HAS_CLASSES)
#include <compare>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "vel_filesys.h"
#endif

// clang-format off
/// The rules by which a text is read as a path.
enum VelEnPathSyntax VEL_ENUM_TYPE(uint32_t) {
  /// Backslash style on Windows, otherwise slash style.
  PATH_SYNTAX_SYSTEM = 0,
  /// "/" separates components, and every other byte is an ordinary character.
  PATH_SYNTAX_SLASH = 1,
  /// "\\" and "/" separate components. A path can begin with a drive, with a server and share, or with the
  /// prefix of a device ("\\\\.\\COM1"). After the prefixes "\\\\?\\" and "\\??\\" only "\\" separates, and
  /// components such as ".." are ordinary names, as Windows reads such paths.
  PATH_SYNTAX_BACKSLASH = 2,
  /// The style that VelClFilename sees in the text: slash style if it contains "/", but neither "\\" nor a
  /// drive letter, otherwise backslash style.
  PATH_SYNTAX_AS_FILENAME = 3
};
/// For C programs.
typedef enum VelEnPathSyntax VelEnPathSyntax;

/// The parts of a path: each is some adjacent characters of its text, and may be empty.
enum VelEnPathPart VEL_ENUM_TYPE(uint32_t) {
  PATH_PART_ROOT_NAME = 0,  ///< "C:", "\\\\server\\share", "\\\\?\\UNC\\server\\share", "\\\\.\\COM1"
  PATH_PART_ROOT = 1,       ///< the name of the root, and the separator after it: "C:\\", "C:", "\\", "/"
  PATH_PART_PARENT = 2,     ///< what is before the last component, without separators at its end: "C:\\d"
  PATH_PART_NAME = 3,       ///< the last component, "" if the path ends with a separator: "x.tar.gz"
  PATH_PART_STEM = 4,       ///< the last component without its extension: "x.tar"
  PATH_PART_EXTENSION = 5,  ///< the last component from its last "." on: ".gz"
  PATH_PART_EXTENSIONS = 6  ///< the last component from its first "." on: ".tar.gz"
};
/// For C programs.
typedef enum VelEnPathPart VelEnPathPart;
// clang-format on

#if !defined(__cplusplus)
/// The names of the enumerations in C.
typedef enum VelEnPathSyntax VelEnPathSyntax;
typedef enum VelEnPathPart VelEnPathPart;
#endif

/// A path. Functions that change it leave it as it was if they fail. They fail with PATH_INVALID, or for lack
/// of memory. In all functions a null text counts as "", and a text may be part of the path itself.
/// Several threads may read one path.
typedef struct VelStPath VelStPath;

/// Makes a path of the `size` bytes of a text, which is kept as it is. The caller frees `path` by
/// velPathFree; it is null after a failure.
VEL_C_API VelStStatus* velPathCreate(const char* text, size_t size, VelEnPathSyntax syntax, VelStPath** path);
VEL_C_API VelStStatus* velPathCopy(const VelStPath* source, VelStPath** path);
/// Frees a path; null is ignored.
VEL_C_API void velPathFree(VelStPath* path);

/// Returns the text, NUL-terminated, and its size in bytes without the NUL, unless `size` is null. It is
/// valid until the path changes.
VEL_C_API const char* velPathGetText(const VelStPath* path, size_t* size);
/// Returns PATH_SYNTAX_SLASH or PATH_SYNTAX_BACKSLASH.
VEL_C_API VelEnPathSyntax velPathGetSyntax(const VelStPath* path);
/// Returns a part of the text, which is not NUL-terminated, and its size in bytes.
VEL_C_API const char* velPathGetPart(const VelStPath* path, VelEnPathPart part, size_t* size);
/// Gives the root, if there is one, and then one component after the other. `position` is where to search: 0
/// at first, later as the function has left it. Returns null after the last component.
VEL_C_API const char* velPathGetComponent(const VelStPath* path, size_t* position, size_t* size);
/// See the methods of VelClPath with the same names.
VEL_C_API bool velPathIsAbsolute(const VelStPath* path);
VEL_C_API bool velPathIsReserved(const VelStPath* path);
VEL_C_API int velPathCompare(const VelStPath* path, const VelStPath* other);
VEL_C_API int velPathCompareAsSystem(const VelStPath* path, const VelStPath* other);
VEL_C_API VelStStatus* velPathCheck(const VelStPath* path);

/// Change a path; see the methods of VelClPath with the same names.
VEL_C_API VelStStatus* velPathAppend(VelStPath* path, const char* text, size_t size);
VEL_C_API VelStStatus* velPathJoin(VelStPath* path, const char* text, size_t size);
VEL_C_API VelStStatus* velPathSetNewName(VelStPath* path, const char* name, size_t size);
VEL_C_API VelStStatus* velPathSetNewStem(VelStPath* path, const char* stem, size_t size);
VEL_C_API VelStStatus* velPathSetNewExtension(VelStPath* path, const char* extension, size_t size);
VEL_C_API bool velPathSetToParent(VelStPath* path);
VEL_C_API VelStStatus* velPathMakeNormal(VelStPath* path);
/// `base` may be null for the current directory of the process.
VEL_C_API VelStStatus* velPathMakeAbsolute(VelStPath* path, const VelStPath* base);
VEL_C_API VelStStatus* velPathMakeRelative(VelStPath* path, const VelStPath* base);
VEL_C_API VelStStatus* velPathConvert(VelStPath* path, VelEnPathSyntax syntax);
/// `name` is a buffer of VEL_MAX_PATH_LENGTH + 1 bytes, and receives "" if the function fails.
VEL_C_API VelStStatus* velPathToFilename(const VelStPath* path, char* name);
VEL_C_API VelStStatus* velPathFromFilename(const char* name, VelStPath** path);

#if defined(VEL_HAS_CLASSES)

/// A path of any length in UTF-8. Functions with a status leave the path as it was if they fail. Others throw
/// nothing but the VelClExceptionFatal of a failed allocation, and then leave the path as it was, too.
///
///   VelClPath path("C:\\data\\Jürgen");
///   path.append("report.tar.gz");
///   path.setNewExtension("xz");
///   for (std::string_view component : path) ...   // "C:\\", "data", "Jürgen", "report.tar.xz"
class VEL_API VelClPath {
 public:
  /// Constructs the empty path in the system's syntax.
  VelClPath() noexcept : content_(nullptr) {}
  // Intentionally not explicit: a text can be passed wherever a path is expected.
  /// The text is kept as it is. Bytes that are not UTF-8, and NULs, are refused only where the system gets
  /// the path. Null counts as "".
  VelClPath(std::string_view text, VelEnPathSyntax syntax = PATH_SYNTAX_SYSTEM)
      : VelClPath(text.data(), text.size(), syntax) {}
  VelClPath(const char* text, VelEnPathSyntax syntax = PATH_SYNTAX_SYSTEM)
      : VelClPath(text, text != nullptr ? std::char_traits<char>::length(text) : 0, syntax) {}
  VelClPath(const std::string& text, VelEnPathSyntax syntax = PATH_SYNTAX_SYSTEM)
      : VelClPath(text.data(), text.size(), syntax) {}
  VelClPath(const char* text, size_t size, VelEnPathSyntax syntax);
  VelClPath(const VelClPath& other);
  /// Leaves an empty path in the system's syntax behind.
  VelClPath(VelClPath&& other) noexcept : content_(std::exchange(other.content_, nullptr)) {}
  /// Assigns text and syntax.
  VelClPath& operator=(VelClPath other) noexcept {
    std::swap(content_, other.content_);
    return *this;
  }
  ~VelClPath();

  /// Return the text, NUL-terminated, and its size in bytes. It is valid until the path changes.
  const char* getAsCString() const noexcept;
  size_t getLength() const noexcept;
  bool isEmpty() const noexcept { return getLength() == 0; }
  std::string_view getText() const noexcept { return {getAsCString(), getLength()}; }
  operator std::string_view() const noexcept { return getText(); }
  /// Returns PATH_SYNTAX_SLASH or PATH_SYNTAX_BACKSLASH.
  VelEnPathSyntax getSyntax() const noexcept;
  /// Returns the separator that joined components get.
  char getPathSep() const noexcept { return getSyntax() == PATH_SYNTAX_SLASH ? '/' : '\\'; }

  /// Return a part of the text; see VelEnPathPart. It is valid until the path changes. The parent of a root
  /// is the root, that of a single component is "".
  const char* getPart(VelEnPathPart part, size_t& size) const noexcept;
  std::string_view getPart(VelEnPathPart part) const noexcept {
    size_t size = 0;
    const char* const text = getPart(part, size);
    return {text, size};
  }
  std::string_view getRootName() const noexcept { return getPart(PATH_PART_ROOT_NAME); }
  std::string_view getRoot() const noexcept { return getPart(PATH_PART_ROOT); }
  std::string_view getParent() const noexcept { return getPart(PATH_PART_PARENT); }
  std::string_view getName() const noexcept { return getPart(PATH_PART_NAME); }
  std::string_view getStem() const noexcept { return getPart(PATH_PART_STEM); }
  std::string_view getExtension() const noexcept { return getPart(PATH_PART_EXTENSION); }
  std::string_view getExtensions() const noexcept { return getPart(PATH_PART_EXTENSIONS); }

  /// Gives the root, if there is one, and then one component after the other, which are not NUL-terminated;
  /// separators are not components. `position` is where to search: 0 at first, later as the function has left
  /// it. Returns null after the last component.
  const char* getComponent(size_t& position, size_t& size) const noexcept;

  /// Iterates over the root and the components. An iterator is valid until the path changes.
  class Iterator {
   public:
    /// For the algorithms of the standard library.
    using value_type = std::string_view;
    using difference_type = std::ptrdiff_t;
    using iterator_category = std::input_iterator_tag;

    /// Construct an iterator at the end, and one at the start of a path.
    Iterator() noexcept = default;
    explicit Iterator(const VelClPath& path) noexcept : path_(&path) { ++*this; }
    /// The root or a component.
    std::string_view operator*() const noexcept { return component_; }
    /// Move to the next component.
    Iterator& operator++() noexcept {
      size_t size = 0;
      const char* const text = path_->getComponent(position_, size);
      if (text == nullptr) path_ = nullptr;
      component_ = {text, size};
      return *this;
    }
    Iterator operator++(int) noexcept {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    /// Compares the positions of iterators over one path.
    bool operator==(const Iterator& other) const noexcept {
      return path_ == other.path_ && (path_ == nullptr || position_ == other.position_);
    }

   private:
    const VelClPath* path_ = nullptr;  ///< null at the end
    size_t position_ = 0;
    std::string_view component_;
  };
  /// Begin and end a loop over the components.
  Iterator begin() const noexcept { return Iterator(*this); }
  Iterator end() const noexcept { return {}; }

  /// True for "/..." in slash style; in backslash style for "C:\\...", for a server and share, and for the
  /// prefixes "\\\\?\\" and "\\\\.\\" with a name. "\\dir", which depends on the current drive, and "C:dir",
  /// which depends on the current directory of the drive, are relative.
  bool isAbsolute() const noexcept;
  bool isRelative() const noexcept { return !isAbsolute(); }
  /// True if the last component is the name of a device on some version of Windows, such as "NUL" or
  /// "com1.txt". In slash style, and after "\\\\?\\", no name is reserved.
  bool isReserved() const noexcept;

  /// Appends a text as VelClFilename joins a directory and a name: after a separator, unless the path is
  /// empty or ends with one. The text is not examined, so that an absolute one stays below this path.
  VelClPath& append(const char* text, size_t size);
  VelClPath& append(std::string_view text) { return append(text.data(), text.size()); }
  /// Finds `text` from this path as from a current directory, as std::filesystem::path does. An absolute text
  /// replaces the path; so does one with another drive. "\\dir" keeps the name of the root; "C:dir" continues
  /// in a path of the same drive. "" changes nothing. In a path that begins with "\\\\?\\", "." and ".." of
  /// the text are resolved, because they would be ordinary names there. The text is read in the syntax of
  /// this path.
  VelClPath& join(const char* text, size_t size);
  VelClPath& join(std::string_view text) { return join(text.data(), text.size()); }
  VelClPath& operator/=(std::string_view text) { return join(text); }
  VelClPath operator/(std::string_view text) const { return std::move(VelClPath(*this).join(text)); }

  /// Replace the last component, or its stem only; the rest stays.
  void setNewName(const char* name, size_t size);
  void setNewName(std::string_view name) { setNewName(name.data(), name.size()); }
  void setNewStem(const char* stem, size_t size);
  void setNewStem(std::string_view stem) { setNewStem(stem.data(), stem.size()); }
  /// Replaces the last extension. The dot is optional, and "" removes the extension.
  void setNewExtension(const char* extension, size_t size);
  void setNewExtension(std::string_view extension) { setNewExtension(extension.data(), extension.size()); }
  /// Removes the last component. Returns false if nothing is left to remove: the path is a root or empty.
  bool setToParent();

  /// Brings the path to its normal form: "." and doubled separators are removed, a component before ".." is
  /// removed together with it, and separators of backslash style become "\\". ".." does not lead above the
  /// root, but stays at the start of a relative path. A separator at the end is removed, unless it belongs to
  /// the root. An empty path becomes ".". A path that begins with "\\\\?\\" is not changed. The file system
  /// is not asked: where "a" is a link, "a/../b" may be another file than "b". Blanks and dots at the end of
  /// a component stay, even if Windows ignores them.
  void makeNormal();
  VelClPath getNormal() const {
    VelClPath path(*this);
    path.makeNormal();
    return path;
  }
  /// Makes the path absolute, from the current directory of the process, or on Windows of its drive. It is
  /// not brought to its normal form. The bare name of a device in backslash style gets the prefix: "NUL"
  /// becomes "\\\\.\\NUL". Outside of Windows a path in backslash style gets the drive "C:", as directories
  /// of VelClDirectory do. Fails with PATH_INVALID for a path that check refuses, for "\\\\server"
  /// without a share, for a relative path in slash style on Windows, and if the current directory
  /// cannot be written in the syntax of the path.
  VelClStatus makeAbsolute();
  /// Same, from `base`, which must be absolute; the system is not asked. Fails with PATH_INVALID if the path
  /// does not become absolute, such as "D:x" from "C:\\".
  VelClStatus makeAbsolute(const VelClPath& base);
  /// Makes the path relative to the directory `base`, in the normal form: "../x" for "/a/x" from "/a/b".
  /// Components are compared as the system compares them. Fails with PATH_INVALID if the roots differ, or
  /// if it depends on the name of a directory that ".." in `base` stands for.
  VelClStatus makeRelative(const VelClPath& base);

  /// Compare the roots and the components one by one, byte by byte. Doubled separators, and separators at the
  /// end, make no difference; "/" equals "\\" in backslash style. "." and ".." are not resolved. The
  /// result is negative, 0 or positive.
  int compare(const VelClPath& other) const noexcept;
  friend bool operator==(const VelClPath& a, const VelClPath& b) noexcept { return a.compare(b) == 0; }
  friend std::strong_ordering operator<=>(const VelClPath& a, const VelClPath& b) noexcept {
    return a.compare(b) <=> 0;
  }
  /// Compare with a text, which is read in the syntax of the path.
  template <typename Text>
  requires std::is_convertible_v<const Text&, std::string_view>
  friend bool operator==(const VelClPath& path, const Text& text) noexcept {
    return path.compareWithText(text) == 0;
  }
  template <typename Text>
  requires std::is_convertible_v<const Text&, std::string_view>
  friend std::strong_ordering operator<=>(const VelClPath& path, const Text& text) noexcept {
    return path.compareWithText(text) <=> 0;
  }
  /// Same, but as the system compares the names of files, by the syntax of this path. In slash style they are
  /// bytes. In backslash style Windows ignores case by its own table of upper-case letters, the same in every
  /// locale; elsewhere ASCII case is ignored, as the library does when it finds the file of a
  /// backslash name.
  int compareAsSystem(const VelClPath& other) const noexcept;

  /// Fails with PATH_INVALID, and the position of the offending byte, for a path that cannot be given to the
  /// system: one that is empty or contains a NUL, and on Windows one that is not UTF-8. Elsewhere names are
  /// bytes.
  VelClStatus check() const;
  /// Changes the syntax, and the text so that it names the same file there. To slash style the drive is
  /// dropped, as the file functions do outside of Windows: "C:\\d\\x" becomes "/d/x". Fails with
  /// PATH_INVALID if the new style has no such name: "\\\\.\\COM1" in slash style; in backslash style a
  /// component with "\\", and a path that begins like one with a drive, such as "a:b".
  VelClStatus convertTo(VelEnPathSyntax syntax);

  /// Sets `name` to the same file. On Windows the text is converted to the encoding of the process. Fails
  /// with PATH_TOO_LONG if the result has more than VEL_MAX_PATH_LENGTH characters, and with PATH_INVALID
  /// for a path that check refuses, for characters that the encoding does not have, and if VelClFilename
  /// would see another file in the text, such as "a\\b" in slash style outside of Windows.
  VelClStatus toFilename(VelClFilename& name) const;
  /// Sets `path` to the same file in the system's syntax. Outside of Windows "C:\\d\\x" becomes "/d/x"; its
  /// case is not adapted to existing entries.
  static VelClStatus fromFilename(const VelClPathProperty& name, VelClPath& path);

  /// Sets `path` to the same file in the system's syntax. Fails with PATH_INVALID for a path that check
  /// refuses or that the system's syntax does not have.
  VelClStatus toStd(std::filesystem::path& path) const {
    VelClPath converted(*this);
    VelClStatus status = converted.convertTo(PATH_SYNTAX_SYSTEM);
    if (status.isOk()) status = converted.check();
    if (!status.isOk()) return status;
    const std::string_view text = converted.getText();
    const auto* const units = reinterpret_cast<const char8_t*>(text.data());
    path = std::filesystem::path(units, units + text.size());
    return {};
  }
  /// Fails with PATH_INVALID if the text is not UTF-16 on Windows.
  static VelClStatus fromStd(const std::filesystem::path& source, VelClPath& path) {
    try {
      const auto text = source.u8string();
      path = VelClPath(std::string_view(reinterpret_cast<const char*>(text.data()), text.size()));
      return {};
    } catch (const std::filesystem::filesystem_error&) {
      return {PATH_INVALID, VelEnErrorClass::IO_INVALID_NAME};
    } catch (const std::range_error&) {
      return {PATH_INVALID, VelEnErrorClass::IO_INVALID_NAME};
    }
  }

 private:
  struct Content;
  int compareWithText(const char* text, size_t size) const noexcept;
  int compareWithText(std::string_view text) const noexcept {
    return compareWithText(text.data(), text.size());
  }

  Content* content_;  ///< null for the empty path in the system's syntax
};

#endif

#endif
