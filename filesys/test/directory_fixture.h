// What tests of directories share: a scratch directory by back-slash names.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/test/scratch_directory.h"
#include "vel_include/vel_filesys.h"

namespace vel::test {

class DirectoryFixture : public testing::Test {
 protected:
  VelClDirectory directory(const std::string& entry) const {
    return VelClDirectory((backSlashed(scratch_.path()) + "\\" + entry).c_str());
  }

  ScratchDirectory scratch_;
};

/// A path that the system takes in any length.
inline std::filesystem::path unlimited(const std::string& path) {
  return (std::filesystem::path::preferred_separator == '\\' ? "\\\\?\\" : "") + path;
}

}  // namespace vel::test
