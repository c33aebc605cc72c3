// Finds files the way Windows finds programs and libraries: by several forms of the name, first as spelled
// and then in any case.
#pragma once

#include <array>
#include <climits>
#include <cstddef>
#include <string_view>

namespace vel::platform {

using PathBuffer = std::array<char, PATH_MAX>;

/// One form of a file name: the directory with its final separator, followed by prefix, stem and suffix.
struct NameForm {
  std::string_view directory, prefix, stem, suffix;
};

/// The forms of one name in the order in which they are tried.
class NameForms {
 public:
  /// Only the name as it is.
  explicit NameForms(std::string_view name) noexcept;
  /// "x.EXE", then "x".
  static NameForms ofProgram(std::string_view name) noexcept;
  /// "x.DLL", then "x.so" and "libx.so".
  static NameForms ofLibrary(std::string_view name) noexcept;

  const NameForm* begin() const noexcept { return forms_.data(); }
  const NameForm* end() const noexcept { return forms_.data() + count_; }

 private:
  void add(std::string_view prefix, std::string_view stem, std::string_view suffix) noexcept;
  bool endsIn(std::string_view extension) const noexcept;

  std::array<NameForm, 3> forms_;
  std::size_t count_;
};

/// Places to search, in this order. A privileged program skips the current directory and PATH, which its
/// caller chooses, unless kAlsoPrivileged is set.
enum SearchPlaces : unsigned {
  kBesideProgram = 1,
  kInCurrentDirectory = 2,
  kAlongPath = 4,
  kBesideThisLibrary = 8,
  kAlsoPrivileged = 16,
};

/// Visits a path where the file may be: returns true to accept it, false to continue the search.
using PathVisitor = bool (*)(const char* path, void* context) noexcept;

/// Calls `visit` for every place where a name without directory could be, until it accepts one. Returns
/// whether it did. Directories along PATH may be relative.
bool searchFile(const NameForms& forms, unsigned places, PathVisitor visit, void* context) noexcept;

/// Calls `visit` for the forms themselves, without searching directories.
bool tryNames(const NameForms& forms, PathVisitor visit, void* context) noexcept;
/// Calls `visit` for the forms of a name that has a directory, in native spelling. Each contains a "/",
/// because the system's loader would search for a name without one.
bool tryPaths(const NameForms& forms, PathVisitor visit, void* context) noexcept;

/// Returns the path's directory with its final "/"; "" for a path without "/".
std::string_view directoryOf(std::string_view path) noexcept;
/// Copies the path's directory; "." for a path without "/". Returns false if it is too long.
bool copyDirectoryOf(std::string_view path, PathBuffer& directory) noexcept;

bool isRegularFile(const char* path) noexcept;

/// Receives the full path of the file that a visitor accepts.
struct FoundPath {
  char* out;
  std::size_t capacity;

  /// Makes the path absolute and copies it; false if it does not fit.
  bool set(const char* path) const noexcept;
};

}  // namespace vel::platform
