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
using test::ScratchDirectory;

TEST(Files, MissingEntries) {
  const ScratchDirectory scratch;
  for (const std::string& name : {scratch.path("missing"), scratch.path("missing") + "/x", std::string()}) {
    EntryStatus status;
    EXPECT_FALSE(entryExists(name.c_str()) || isWritable(name.c_str())) << name;
    EXPECT_FALSE(statusOf(name.c_str(), status)) << name;
    EXPECT_EQ(attributesOf(name.c_str()), kAttributesUnreadable) << name;
    EXPECT_EQ(removeFile(name.c_str()), ENOENT) << name;
    EXPECT_EQ(setReadOnly(name.c_str(), true), ENOENT) << name;
    EXPECT_EQ(renameFile(name.c_str(), scratch.path("new").c_str()), ENOENT) << name;
    EXPECT_NE(copyFile(name.c_str(), scratch.path("new").c_str()), 0) << name;
  }
  EXPECT_FALSE(fs::exists(scratch.path("new")));
}

TEST(Files, RenamingRefusesExistingTargets) {
  const ScratchDirectory scratch;
  const auto rename = [&scratch](const char* from, const char* to) {
    return renameFile(scratch.path(from).c_str(), scratch.path(to).c_str());
  };
  scratch.write("file", "old");
  scratch.write("other", "other");
  scratch.write("directory/file", "x");
  fs::create_directory(scratch.path("empty"));
  for (const char* target : {"file", "other", "directory", "empty"})
    EXPECT_EQ(rename("file", target), EEXIST);
  EXPECT_EQ(rename("directory", "empty"), EEXIST);
  EXPECT_EQ(readFile(scratch.path("file")) + readFile(scratch.path("other")), "oldother");
  EXPECT_EQ(rename("file", "new"), 0);
  EXPECT_EQ(rename("new", "NEW"), 0);
  EXPECT_EQ(rename("directory", "moved"), 0);
  EXPECT_EQ(readFile(scratch.path("NEW")) + readFile(scratch.path("moved/file")), "oldx");
  EXPECT_FALSE(entryExists(scratch.path("file").c_str()));
}

TEST(Files, CopiesWholeContents) {
  const ScratchDirectory scratch;
  std::string large;
  for (int line = 0; line < 30000; ++line) large += std::to_string(line) + '\n';
  const std::string target = scratch.path("target");
  // New target, longer target before, shorter one before.
  for (const std::string& contents : {large, std::string("short\r\n\0\x1A.", 10), std::string(), large}) {
    const std::string source = scratch.write("source", contents);
    EXPECT_EQ(copyFile(source.c_str(), target.c_str()), 0);
    EXPECT_EQ(readFile(target), contents);
  }
}

TEST(Files, FailedCopiesLeaveAllAsItWas) {
  const ScratchDirectory scratch;
  const std::string readOnly = scratch.write("readOnly", "kept");
  scratch.write("source", "kept");
  fs::create_hard_link(scratch.path("source"), scratch.path("link"));
  fs::create_directory(scratch.path("directory"));
  ASSERT_EQ(setReadOnly(readOnly.c_str(), true), 0);
  const char* const rows[][2] = {{"source", "missing/new"}, {"source", "readOnly"}, {"source", "link"},
                                 {"source", "directory"},   {"source", "source"},   {"source", "./source"},
                                 {"directory", "new"}};
  for (const auto& [from, to] : rows)
    EXPECT_NE(copyFile(scratch.path(from).c_str(), scratch.path(to).c_str()), 0) << to;
  EXPECT_EQ(readFile(scratch.path("source")) + readFile(readOnly), "keptkept");
  EXPECT_FALSE(entryExists(scratch.path("new").c_str()));
  EXPECT_TRUE(fs::is_empty(scratch.path("directory")));
}

TEST(Files, CurrentDirectoryFitsExactlyOrNotAtAll) {
  const ScratchDirectory scratch;
  const test::CurrentDirectory in(scratch.path());
  char out[261];
  ASSERT_TRUE(currentDirectory(out, sizeof out));
  const std::string directory = out;
  EXPECT_EQ(directory, test::backSlashed(fs::current_path().string()));
  EXPECT_TRUE(entryExists(out) && currentDirectory(out, directory.size() + 1));
  EXPECT_EQ(out, directory);
  for (std::size_t capacity = 0; capacity <= directory.size(); ++capacity)
    EXPECT_FALSE(currentDirectory(out, capacity)) << capacity;
  const test::CurrentDirectory root(fs::current_path().root_path());
  ASSERT_TRUE(currentDirectory(out, sizeof out));
  EXPECT_STREQ(out + 1, ":\\");
}

}  // namespace

}  // namespace vel::platform
