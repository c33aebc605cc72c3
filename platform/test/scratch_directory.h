// Temporary directories, and changes of the current directory, for the duration of a test.
#pragma once

#include <filesystem>
#include <string>

namespace vel::test {

/// Creates a directory and removes it with its contents.
class ScratchDirectory {
 public:
  ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory();

  /// Returns the path of the directory, or of an entry, with the separators of the system.
  const std::string& path() const { return path_; }
  std::string path(const std::string& entry) const {
    return path_ + static_cast<char>(std::filesystem::path::preferred_separator) + entry;
  }
  /// Writes a file with these bytes and returns its path.
  std::string write(const std::string& entry, const std::string& bytes) const;

 private:
  std::string path_;
};

/// Changes the current directory until the end of this object.
class CurrentDirectory {
 public:
  explicit CurrentDirectory(const std::filesystem::path& path) { std::filesystem::current_path(path); }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;
  ~CurrentDirectory() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};

/// Returns a name in UTF-8 as a path, whatever the encoding of narrow names is on this system.
inline std::filesystem::path utf8Path(const std::string& name) {
  return {std::u8string(name.begin(), name.end())};
}

/// Returns the bytes of a file with a name in UTF-8, or "" if it cannot be read.
std::string readFile(const std::string& path);

/// Returns an absolute path as a backslash name, with a drive.
std::string backSlashed(std::string path);

}  // namespace vel::test
