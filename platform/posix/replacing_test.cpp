// Replaced files as this system shows them: permissions, links, devices, and what a failure leaves.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "platform/byte_files.h"
#include "platform/platform.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::ScratchDirectory;

SystemError replaceWith(const std::string& name, const std::string& bytes) {
  Replacement replacement;
  if (const SystemError error = startReplacement(name.c_str(), replacement); error != 0) return error;
  if (writeBytes(replacement.descriptor, bytes.data(), bytes.size())) return finishReplacement(replacement);
  const SystemError error = errno;
  dropReplacement(replacement);
  return error;
}

std::size_t entriesIn(const std::string& directory) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

TEST(Replacing, KeepsPermissionsAndLinks) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("deep/file", "old");
  fs::permissions(file, fs::perms(0640));
  fs::create_symlink("deep/file", scratch.path("link"));
  EXPECT_EQ(replaceWith(scratch.path("link"), "new"), 0);
  EXPECT_EQ(readFile(file), "new");
  EXPECT_TRUE(fs::is_symlink(scratch.path("link")));
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
  EXPECT_EQ(entriesIn(scratch.path("deep")), 1U);
  const mode_t before = umask(027);
  EXPECT_EQ(replaceWith(scratch.path("created"), "x"), 0);
  umask(before);
  EXPECT_EQ(fs::status(scratch.path("created")).permissions(), fs::perms(0640));
  fs::permissions(file, fs::perms(0440));
  EXPECT_EQ(replaceWith(file, "x"), EACCES);
  EXPECT_EQ(replaceWith(scratch.path(), "x"), EISDIR);
  EXPECT_EQ(replaceWith(scratch.path("none/x"), "x"), ENOENT);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  fs::create_symlink("/proc/self/fd/" + std::to_string(ends[1]), scratch.path("stream"));
  EXPECT_EQ(replaceWith(scratch.path("stream"), "x"), 0);
  char byte = 0;
  EXPECT_TRUE(read(ends[0], &byte, 1) == 1 && byte == 'x');
  close(ends[0]);
  close(ends[1]);
  fs::create_symlink("nowhere", scratch.path("dangling"));
  EXPECT_EQ(replaceWith(scratch.path("dangling"), "x"), ENOENT);
  EXPECT_TRUE(fs::is_symlink(scratch.path("dangling")));
}

TEST(Replacing, TakesNoAccessControlListFromTheDirectory) {
  // As the system stores it: version 2, then per entry its kind, its rights and whose they are.
  const std::uint32_t list[] = {2, 0x70001, ~0U, 0x70002, 1234, 0x50004, ~0U, 0x70010, ~0U, 0x50020, ~0U};
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "old");
  fs::permissions(file, fs::perms(0640));
  if (setxattr(scratch.path().c_str(), "system.posix_acl_default", list, sizeof list, 0) != 0)
    GTEST_SKIP() << "no access control lists here";
  EXPECT_EQ(replaceWith(file, "new"), 0);
  EXPECT_EQ(getxattr(file.c_str(), "system.posix_acl_access", nullptr, 0), -1);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
  ASSERT_EQ(setxattr(file.c_str(), "system.posix_acl_access", list, sizeof list, 0), 0);
  EXPECT_EQ(replaceWith(file, "new"), 0);
  EXPECT_EQ(getxattr(file.c_str(), "system.posix_acl_access", nullptr, 0), ssize_t{sizeof list});
}

TEST(Replacing, WritesDevicesThemselves) {
  EXPECT_EQ(replaceWith("/dev/full", "x"), ENOSPC);
  EXPECT_EQ(replaceWith("/dev/null", "x"), 0);
}

}  // namespace

}  // namespace vel::platform
