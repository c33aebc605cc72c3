// Links in the place of directories, and files that cannot be removed.
#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cerrno>
#include <fstream>

#include "platform/directories.h"
#include "platform/files.h"
#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/windows/wine.h"
#include "vel_include/vel_filesys.h"

namespace vel::platform {

namespace {

constexpr DWORD kUnprivileged = 0x2;

bool isThere(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

class Link {
 public:
  Link(const std::string& path, const std::string& target) : path_(path), outside_(test::unixName(target)) {
    constexpr DWORD kFlags = SYMBOLIC_LINK_FLAG_DIRECTORY | kUnprivileged;
    isMade_ = outside_.empty() ? CreateSymbolicLinkA(path.c_str(), target.c_str(), kFlags) != 0
                               : test::startUnixProgram("ln", "-sn " + outside_ + " " + outsideName()) &&
                                     test::waitUntil([&] { return isThere(path); });
  }
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  /// One that stayed would keep its directory from being removed.
  ~Link() {
    if (isMade_ && !outside_.empty() && test::startUnixProgram("rm", outsideName()))
      test::waitUntil([this] { return !isThere(path_); });
  }

  bool isMade() const { return isMade_; }

 private:
  std::string outsideName() const {
    const std::size_t separator = path_.rfind('\\');
    return test::unixName(path_.substr(0, separator)) + "/" + path_.substr(separator + 1);
  }

  std::string path_, outside_;
  bool isMade_;
};

// Wine cannot remove a link to a directory: it stays, and so does what it leads to.
TEST(WindowsDirectories, RemovalNeverFollowsALink) {
  for (const char* const target : {"outside", "outside\\empty"}) {
    const test::ScratchDirectory scratch;
    const std::string file = scratch.write("outside\\file", "kept"), tree = scratch.path("tree");
    std::filesystem::create_directory(scratch.path("outside\\empty"));
    scratch.write("tree\\sub\\file", "text");
    const bool isRemovable = test::unixName(file).empty();
    const Link link(scratch.path("link"), scratch.path(target)),
        inner(tree + "\\sub\\inner", scratch.path(target));
    if (!link.isMade() || !inner.isMade()) GTEST_SKIP() << "this user may not make links";
    DirectoryHandle opened;
    EXPECT_EQ(openDirectory(scratch.path("link").c_str(), DirectoryLink::Refuse, opened), ENOTDIR);
    EXPECT_EQ(openDirectory(scratch.path("link").c_str(), DirectoryLink::Follow, opened), 0);
    closeDirectory(opened);
    for (const bool withContents : {true, false})
      EXPECT_EQ(VelClDirectory(scratch.path("link").c_str()).removeAll(withContents),
                isRemovable && withContents);
    EXPECT_EQ(VelClDirectory(tree.c_str()).removeAll(true), isRemovable);
    EXPECT_EQ(isThere(scratch.path("link")) || isThere(tree + "\\sub\\inner"), !isRemovable);
    EXPECT_EQ(test::readFile(file), "kept");
    EXPECT_TRUE(isThere(scratch.path("outside\\empty")));
  }
}

TEST(WindowsFiles, OneThatCannotBeRemovedStaysReadOnly) {
  const test::ScratchDirectory scratch;
  const std::string name = scratch.write("file", "kept");
  ASSERT_EQ(setReadOnly(name.c_str(), true), 0);
  {
    const std::ifstream open(name);
    EXPECT_EQ(removeFile(name.c_str()), EACCES);
    EXPECT_EQ(attributesOf(name.c_str()), kAttributeReadOnly);
  }
  EXPECT_EQ(removeFile(name.c_str()), 0);
}

}  // namespace

}  // namespace vel::platform
