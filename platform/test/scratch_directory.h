// A directory for one test, removed with its contents at the end, and a change of the current directory.
#pragma once

#include <filesystem>
#include <string>

namespace vel::test {

class ScratchDirectory {
 public:
  ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory();

  /// The directory, or an entry in it, in the system's own spelling.
  const std::string& path() const { return path_; }
  std::string path(const std::string& entry) const {
    return path_ + static_cast<char>(std::filesystem::path::preferred_separator) + entry;
  }
  /// Writes a file with these bytes and returns its path.
  std::string write(const std::string& entry, const std::string& bytes) const;

 private:
  std::string path_;
};

/// Another current directory as long as this object lives.
class CurrentDirectory {
 public:
  explicit CurrentDirectory(const std::filesystem::path& path) { std::filesystem::current_path(path); }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;
  ~CurrentDirectory() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};

/// All bytes of a file, "" when it cannot be read.
std::string readFile(const std::string& path);

/// An absolute path as back-slash names write it.
std::string backSlashed(std::string path);

}  // namespace vel::test
