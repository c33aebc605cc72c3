// A directory for one test, removed with its contents at the end.
#pragma once

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
  std::string path(const std::string& entry) const { return path_ + separator_ + entry; }
  /// Writes a file with these bytes and returns its path.
  std::string write(const std::string& entry, const std::string& bytes) const;

 private:
  std::string path_;
  char separator_;
};

/// All bytes of a file, "" when it cannot be read.
std::string readFile(const std::string& path);

}  // namespace vel::test
