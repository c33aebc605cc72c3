// What tests of directories share: a scratch directory by back-slash names, and a change of the current
// directory that ends with the test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "platform/test/scratch_directory.h"
#include "vel_include/vel_filesys.h"

namespace vel::test {

/// An absolute path as back-slash names write it.
inline std::string backSlashed(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path.starts_with('\\') ? "C:" + path : path;
}

class CurrentDirectory {
 public:
  explicit CurrentDirectory(const std::filesystem::path& path) { std::filesystem::current_path(path); }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;
  ~CurrentDirectory() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};

class DirectoryFixture : public testing::Test {
 protected:
  VelClDirectory directory(const std::string& entry) const {
    return VelClDirectory((backSlashed(scratch_.path()) + "\\" + entry).c_str());
  }

  ScratchDirectory scratch_;
};

}  // namespace vel::test
