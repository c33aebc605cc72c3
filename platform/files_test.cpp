// Files as both systems show them, with names in the system's own spelling.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
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
    EXPECT_FALSE(entryExists(name.c_str())) << name;
    EXPECT_FALSE(isWritable(name.c_str())) << name;
    EXPECT_EQ(attributesOf(name.c_str()), kAttributesUnreadable) << name;
    EXPECT_FALSE(statusOf(name.c_str(), status)) << name;
    EXPECT_EQ(removeFile(name.c_str()), ENOENT) << name;
    EXPECT_EQ(setReadOnly(name.c_str(), true), ENOENT) << name;
    EXPECT_EQ(renameFile(name.c_str(), scratch.path("new").c_str()), ENOENT) << name;
    EXPECT_NE(copyFile(name.c_str(), scratch.path("new").c_str()), 0) << name;
  }
  EXPECT_FALSE(fs::exists(scratch.path("new")));
}

TEST(Files, StatusOfAFile) {
  const ScratchDirectory scratch;
  const std::string name = scratch.write("file", "12345");
  const auto now = std::chrono::system_clock::now().time_since_epoch() / std::chrono::seconds(1);
  EntryStatus status{};
  ASSERT_TRUE(statusOf(name.c_str(), status));
  EXPECT_EQ(status.sizeInBytes, 5u);
  for (const std::int64_t time : {status.changed, status.accessed, status.modified})
    EXPECT_LE(std::abs(time - now), 120);
  fs::last_write_time(name, fs::last_write_time(name) - std::chrono::hours(1000));
  EntryStatus older{};
  ASSERT_TRUE(statusOf(name.c_str(), older));
  EXPECT_LE(std::abs(status.modified - std::int64_t{3600} * 1000 - older.modified), 2);
}

TEST(Files, ReadOnlyIsAnAttributeThatComesAndGoes) {
  const ScratchDirectory scratch;
  const std::string name = scratch.write("file", "x");
  EXPECT_EQ(attributesOf(scratch.path().c_str()), kAttributeDirectory);
  for (const bool readOnly : {true, true, false, false}) {
    EXPECT_EQ(setReadOnly(name.c_str(), readOnly), 0);
    EXPECT_EQ(isWritable(name.c_str()), !readOnly);
    EXPECT_EQ(attributesOf(name.c_str()), readOnly ? kAttributeReadOnly : 0u);
  }
}

TEST(Files, RemovingLeavesDirectories) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("directory/file", "x");
  EXPECT_NE(removeFile(scratch.path("directory").c_str()), 0);
  EXPECT_TRUE(entryExists(file.c_str()));
  EXPECT_EQ(removeFile(file.c_str()), 0);
  EXPECT_FALSE(entryExists(file.c_str()));
  EXPECT_NE(removeFile(scratch.path("directory").c_str()), 0);
  EXPECT_TRUE(entryExists(scratch.path("directory").c_str()));
}

TEST(Files, RenamingRefusesExistingTargets) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "old");
  scratch.write("other", "other");
  scratch.write("directory/file", "x");
  fs::create_directory(scratch.path("empty"));
  for (const char* target : {"file", "other", "directory", "empty"})
    EXPECT_EQ(renameFile(file.c_str(), scratch.path(target).c_str()), EEXIST) << target;
  EXPECT_EQ(renameFile(scratch.path("directory").c_str(), scratch.path("empty").c_str()), EEXIST);
  EXPECT_EQ(readFile(file), "old");
  EXPECT_EQ(readFile(scratch.path("other")), "other");
  EXPECT_EQ(renameFile(file.c_str(), scratch.path("new").c_str()), 0);
  EXPECT_EQ(readFile(scratch.path("new")), "old");
  EXPECT_EQ(renameFile(scratch.path("new").c_str(), scratch.path("NEW").c_str()), 0);
  EXPECT_EQ(renameFile(scratch.path("directory").c_str(), scratch.path("moved").c_str()), 0);
  EXPECT_EQ(readFile(scratch.path("moved/file")), "x");
  EXPECT_FALSE(entryExists(file.c_str()));
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

TEST(Files, CopiesPermissionsAndRespectsThoseOfTheTarget) {
  const ScratchDirectory scratch;
  const std::string source = scratch.write("source", "new");
  const std::string target = scratch.path("target");
  ASSERT_EQ(setReadOnly(source.c_str(), true), 0);
  EXPECT_EQ(copyFile(source.c_str(), target.c_str()), 0);
  EXPECT_FALSE(isWritable(target.c_str()));
  const std::string other = scratch.write("other", "other");
  EXPECT_EQ(copyFile(other.c_str(), target.c_str()), EACCES);
  EXPECT_EQ(readFile(target), "new");
}

TEST(Files, CopyNeverDestroysItsSource) {
  const ScratchDirectory scratch;
  const std::string source = scratch.write("source", "kept");
  fs::create_hard_link(source, scratch.path("link"));
  for (const std::string& target : {source, scratch.path("link"), scratch.path() + "/./source"})
    EXPECT_NE(copyFile(source.c_str(), target.c_str()), 0) << target;
  EXPECT_EQ(readFile(source), "kept");
}

TEST(Files, DirectoriesAreNotCopied) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "x");
  fs::create_directory(scratch.path("directory"));
  EXPECT_NE(copyFile(scratch.path("directory").c_str(), scratch.path("new").c_str()), 0);
  EXPECT_NE(copyFile(file.c_str(), scratch.path("directory").c_str()), 0);
  EXPECT_NE(copyFile(file.c_str(), scratch.path("missing/new").c_str()), 0);
  EXPECT_FALSE(entryExists(scratch.path("new").c_str()));
  EXPECT_TRUE(fs::is_empty(scratch.path("directory")));
}

TEST(Files, CurrentDirectoryFitsExactlyOrNotAtAll) {
  const fs::path before = fs::current_path();
  {
    const ScratchDirectory scratch;
    fs::current_path(scratch.path());
    char out[261];
    ASSERT_TRUE(currentDirectory(out, sizeof out));
    const std::string directory = out;
    std::string expected = fs::current_path().string();
    std::ranges::replace(expected, '/', '\\');
    EXPECT_EQ(directory.substr(1, 2), ":\\");
    EXPECT_EQ(directory.substr(directory.size() - expected.size()), expected);
    EXPECT_TRUE(entryExists(out));
    EXPECT_TRUE(currentDirectory(out, directory.size() + 1));
    EXPECT_EQ(out, directory);
    for (std::size_t capacity = 0; capacity <= directory.size(); ++capacity)
      EXPECT_FALSE(currentDirectory(out, capacity)) << capacity;
    fs::current_path(fs::current_path().root_path());
    ASSERT_TRUE(currentDirectory(out, sizeof out));
    EXPECT_STREQ(out + 1, ":\\");
    fs::current_path(before);
  }
}

TEST(Descriptors, ClosedOnesAreTolerated) {
  for (const int descriptor : {-1, 1000, 1 << 30}) {
    EXPECT_EQ(setDescriptorMode(descriptor, DescriptorMode::Binary), DescriptorMode::NotOpen) << descriptor;
    EXPECT_FALSE(isTerminal(descriptor)) << descriptor;
  }
}

}  // namespace

}  // namespace vel::platform
