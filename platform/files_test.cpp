// Files as both systems show them, with names in the system's own spelling. What filesys/file_test.cpp sees
// as well is left to it.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "platform/platform.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;

/// Names are entries of a scratch directory.
class Files : public testing::Test {
 protected:
  SystemError rename(const char* from, const char* to) const {
    return renameFile(scratch_.path(from).c_str(), scratch_.path(to).c_str());
  }
  SystemError copy(const char* from, const char* to) const {
    return copyFile(scratch_.path(from).c_str(), scratch_.path(to).c_str());
  }
  std::string contents(const char* name) const { return readFile(scratch_.path(name)); }

  test::ScratchDirectory scratch_;
};

TEST_F(Files, RenamingRefusesExistingTargets) {
  scratch_.write("file", "old");
  scratch_.write("other", "other");
  scratch_.write("directory/file", "x");
  fs::create_directory(scratch_.path("empty"));
  for (const char* target : {"file", "other", "directory", "empty"})
    EXPECT_EQ(rename("file", target), EEXIST);
  EXPECT_EQ(rename("directory", "empty"), EEXIST);
  EXPECT_EQ(rename("missing", "new"), ENOENT);
  EXPECT_EQ(rename("missing/x", "new"), ENOENT);
  EXPECT_EQ(rename("file", "new") | rename("new", "NEW") | rename("directory", "moved"), 0);
  EXPECT_EQ(contents("NEW") + contents("moved/file") + contents("other") + contents("file"), "oldxother");
}

TEST_F(Files, CopiesWholeContents) {
  std::string large;
  for (int line = 0; line < 30000; ++line) large += std::to_string(line) + '\n';
  // New target, longer target before, shorter one before.
  for (const std::string& contents : {large, std::string("short\r\n\0\x1A.", 10), std::string(), large}) {
    scratch_.write("source", contents);
    EXPECT_EQ(copy("source", "target"), 0);
    EXPECT_EQ(this->contents("target"), contents);
  }
}

TEST_F(Files, FailedCopiesLeaveAllAsItWas) {
  scratch_.write("source", "kept");
  fs::create_hard_link(scratch_.path("source"), scratch_.path("link"));
  fs::create_directory(scratch_.path("directory"));
  ASSERT_EQ(setReadOnly(scratch_.write("readOnly", "kept").c_str(), true), 0);
  const char* const rows[][2] = {{"source", "missing/new"}, {"source", "readOnly"}, {"source", "link"},
                                 {"source", "directory"},   {"source", "source"},   {"source", "./source"},
                                 {"directory", "new"},      {"missing", "new"}};
  for (const auto& [from, to] : rows) EXPECT_NE(copy(from, to), 0) << to;
  EXPECT_EQ(contents("source") + contents("readOnly"), "keptkept");
  EXPECT_FALSE(fs::exists(scratch_.path("new")));
  EXPECT_TRUE(fs::is_empty(scratch_.path("directory")));
}

TEST_F(Files, CurrentDirectoryFitsExactlyOrNotAtAll) {
  const test::CurrentDirectory in(scratch_.path());
  const std::string directory = test::backSlashed(fs::current_path().string());
  char out[261];
  EXPECT_TRUE(currentDirectory(out, directory.size() + 1));
  EXPECT_EQ(out, directory);
  for (std::size_t capacity = 0; capacity <= directory.size(); ++capacity)
    EXPECT_FALSE(currentDirectory(out, capacity)) << capacity;
  const test::CurrentDirectory root(fs::current_path().root_path());
  ASSERT_TRUE(currentDirectory(out, sizeof out));
  EXPECT_STREQ(out + 1, ":\\");
}

}  // namespace

}  // namespace vel::platform
