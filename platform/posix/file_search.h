// Finds files by name, as other systems name programs and libraries: under several forms of the name, first
// as it is spelled and then in any letter case.
#pragma once

#include <array>
#include <climits>
#include <cstddef>
#include <string_view>

namespace vel::platform {

using PathBuffer = std::array<char, PATH_MAX>;

/// One form of a file name: its directory with the final separator, and three texts behind it.
struct NameForm {
  std::string_view directory, prefix, stem, suffix;
};

/// The forms of one name in the order in which they are looked for.
class NameForms {
 public:
  /// The name alone.
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

/// Where to look, in this order. A privileged program takes nothing from the current directory and along
/// PATH, which its caller chooses, except where kAlsoPrivileged says so.
enum SearchPlaces : unsigned {
  kBesideProgram = 1,
  kInCurrentDirectory = 2,
  kAlongPath = 4,
  kBesideThisLibrary = 8,
  kAlsoPrivileged = 16,
};

/// Takes a path that may be a file's, or declines it so that the search goes on.
using PathVisitor = bool (*)(const char* path, void* context) noexcept;

/// Offers every place where a name without directory could be. Directories along PATH may be relative.
bool searchFile(const NameForms& forms, unsigned places, PathVisitor visit, void* context) noexcept;

/// Offers the forms as they are.
bool tryNames(const NameForms& forms, PathVisitor visit, void* context) noexcept;
/// Offers the forms of a name that has a directory, in native spelling. A "/" is in each: without one the
/// system's loader would search.
bool tryPaths(const NameForms& forms, PathVisitor visit, void* context) noexcept;

/// Returns the path's directory with its final "/", "" when the path has none.
std::string_view directoryOf(std::string_view path) noexcept;

bool isRegularFile(const char* path) noexcept;

/// A searched file's full path, for `take` functions.
struct FoundPath {
  char* out;
  std::size_t capacity;

  /// Makes the path absolute and copies it; false when it does not fit.
  bool set(const char* path) const noexcept;
};

}  // namespace vel::platform
