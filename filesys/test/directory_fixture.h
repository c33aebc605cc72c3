// What tests of files and directories share: a scratch directory by back-slash names, and the last error.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/test/scratch_directory.h"
#include "vel_include/vel_filesys.h"

namespace vel::test {

class DirectoryFixture : public testing::Test {
 protected:
  std::string typed(const std::string& entry) const { return backSlashed(scratch_.path()) + "\\" + entry; }
  VelClDirectory directory(const std::string& entry) const { return VelClDirectory(typed(entry).c_str()); }
  VelClFilename name(const std::string& entry) const { return VelClFilename(typed(entry).c_str()); }

  ScratchDirectory scratch_;
};

/// The last error of a file or directory.
using Left = std::pair<uint32_t, VelEnErrorClass>;

template <typename Object>
Left left(const Object& object) {
  return {object.getLastError().errorId, object.getLastError().errorClass};
}

inline const Left kNone(VEL_NO_ERROR, VelEnErrorClass::UNKNOWN);

/// The last error after an operation, which tells by its result whether there is one.
template <typename Object>
Left outcome(bool isDone, const Object& object) {
  EXPECT_EQ(isDone, left(object) == kNone);
  return left(object);
}

/// A path that the system takes in any length.
inline std::filesystem::path unlimited(const std::string& path) {
  return (std::filesystem::path::preferred_separator == '\\' ? "\\\\?\\" : "") + path;
}

}  // namespace vel::test
