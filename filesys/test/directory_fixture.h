// Shared by tests of files and directories: a scratch directory with backslash names, and the last error.
#pragma once

#include "platform/test/test.h"
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
using LastError = std::pair<uint32_t, VelEnErrorClass>;

template <typename Object>
LastError lastError(const Object& object) {
  return {object.getLastError().errorId, object.getLastError().errorClass};
}

inline const LastError kNoError(VEL_NO_ERROR, VelEnErrorClass::UNKNOWN);

/// Returns the last error after an operation, and checks that there is one exactly when the operation failed.
template <typename Object>
LastError outcome(bool isDone, const Object& object) {
  EXPECT_EQ(isDone, lastError(object) == kNoError);
  return lastError(object);
}

/// Returns the path in a form that the system accepts in any length.
inline std::filesystem::path unlimited(const std::string& path) {
  return (std::filesystem::path::preferred_separator == '\\' ? "\\\\?\\" : "") + path;
}

}  // namespace vel::test
