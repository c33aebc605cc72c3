// Tests links to directories, and files that cannot be removed.
#include "platform/directories.h"
#include "platform/files.h"
#include "platform/test/test.h"
#include "platform/test/windows/wine.h"
#include "vel_include/vel_filesys.h"

namespace vel::platform {

namespace {

// Wine cannot remove a link to a directory; then neither the link nor its target may change.
TEST(WindowsDirectories, RemovalNeverFollowsALink) {
  for (const char* const target : {"outside", "outside\\empty"}) {
    const test::ScratchDirectory scratch;
    const std::string file = scratch.write("outside\\file", "kept"), tree = scratch.path("tree");
    std::filesystem::create_directory(scratch.path("outside\\empty"));
    scratch.write("tree\\sub\\file", "text");
    const bool isRemovable = test::unixName(file).empty();
    const test::Link link(scratch.path("link"), scratch.path(target)),
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
    for (const std::string& name : {scratch.path("link"), tree + "\\sub\\inner"})
      EXPECT_EQ(test::isThere(name), !isRemovable) << name;
    EXPECT_EQ(test::readFile(file), "kept");
    EXPECT_TRUE(test::isThere(scratch.path("outside\\empty")));
  }
}

TEST(WindowsFiles, AFileThatCannotBeRemovedStaysReadOnly) {
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
