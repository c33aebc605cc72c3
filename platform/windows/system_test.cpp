// Tests import thunks, terminals, replaced files and copies. It includes the public headers after windows.h,
// which defines some of their names as macros.
#include <windows.h>

// windows.h is included first.
#include "vel_include/vel.h"
#include "vel_include/vel_c.h"

#include <fcntl.h>
#include <io.h>

#include "platform/byte_files.h"
#include "platform/file_copy.h"
#include "platform/launching.h"
#include "platform/replacing.h"
#include "platform/system.h"
#include "platform/test/test.h"
#include "platform/test/windows/wine.h"

// The headers must leave both macros unchanged.
static_assert(static_cast<int>(VelEnErrorAction::NO_ACTION) == IGNORE && VEL_NO_ERROR == NO_ERROR);

namespace vel::platform {

namespace {

/// A jump through the table entry after it.
struct Thunk {
  std::uint8_t code[8] = {0xFF, 0x25, 2};
  const void* entry;
};

TEST(WindowsSystem, ThunksAreResolvedToTheirFunction) {
  const std::uint8_t function[] = {0xFF, 0x24, 0, 0, 0, 0};
  const Thunk inner{.entry = function}, outer{.entry = &inner}, endless{.entry = &endless};
  for (const void* start : std::initializer_list<const void*>{function, &inner, &outer})
    EXPECT_EQ(resolveImportThunk(start), function);
  for (const void* same : std::initializer_list<const void*>{nullptr, &endless})
    EXPECT_EQ(resolveImportThunk(same), same);
  EXPECT_EQ(windowsPlatformId(), 2);
}

TEST(WindowsSystem, TheNullDeviceIsNotATerminal) {
  const int null = _open("NUL", _O_WRONLY);
  ASSERT_GE(null, 0);
  EXPECT_FALSE(isTerminal(null));
  EXPECT_FALSE(enableTerminalSequences(null));
  _close(null);
}

TEST(WindowsSystem, ReplacingKeepsLinks) {
  const test::ScratchDirectory scratch;
  const std::string file = scratch.write("deep\\file", "old"), name = scratch.path("link");
  const test::Link link(name, file);
  if (!link.isMade()) GTEST_SKIP() << "no links here";
  Replacement replacement;
  EXPECT_EQ(startReplacement(name.c_str(), replacement), 0);
  EXPECT_EQ(writeBytes(replacement.descriptor, "new", 3), 0);
  EXPECT_EQ(finishReplacement(replacement), 0);
  EXPECT_EQ(test::readFile(file), "new");
  SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(startReplacement(name.c_str(), replacement), EACCES);
  SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(WindowsSystem, UnfinishedFilesAreRemovedWhenTheProgramEnds) {
  const test::ScratchDirectory scratch;
  const std::string file = scratch.write("file", "old");
  Replacement replacement;
  ASSERT_EQ(startReplacement(file.c_str(), replacement), 0);
  EXPECT_TRUE(test::isThere(replacement.temporary));
  // The system closes descriptors when a program ends.
  _close(replacement.descriptor);
  EXPECT_FALSE(test::isThere(replacement.temporary));
  EXPECT_EQ(test::readFile(file), "old");
}

TEST(WindowsSystem, ReplacingFailsWhenAnotherFileGetsTheName) {
  const test::ScratchDirectory scratch;
  const std::string file = scratch.write("file", "old"), other = scratch.write("other", "other");
  Replacement replacement, made;
  ASSERT_EQ(startReplacement(file.c_str(), replacement), 0);
  ASSERT_EQ(startReplacement(scratch.path("made").c_str(), made), 0);
  EXPECT_TRUE(MoveFileExA(other.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING));
  scratch.write("made", "first");
  EXPECT_EQ(finishReplacement(replacement), ECANCELED);
  EXPECT_EQ(finishReplacement(made), EEXIST);
  EXPECT_EQ(test::readFile(file) + test::readFile(scratch.path("made")), "otherfirst");
  EXPECT_FALSE(test::isThere(replacement.temporary));
}

TEST(WindowsSystem, CopiesToOpenTargetsAndToLongNames) {
  const test::ScratchDirectory scratch;
  const std::string file = scratch.write("file", "new"), target = scratch.write("target", "old target");
  const int open = _open(target.c_str(), _O_RDONLY);
  EXPECT_EQ(copyFile(file.c_str(), target.c_str()), 0);
  _close(open);
  EXPECT_EQ(test::readFile(target), "new");
  const std::string deep(240 - scratch.path().size(), 'd');
  ASSERT_TRUE(CreateDirectoryA(scratch.path(deep).c_str(), nullptr));
  EXPECT_EQ(copyFile(file.c_str(), scratch.path(deep + "\\t").c_str()), 0);
  EXPECT_EQ(test::readFile(scratch.path(deep + "\\t")), "new");
  EXPECT_EQ(copyFile(file.c_str(), file.c_str()), EACCES);
  EXPECT_EQ(copyFile(file.c_str(), "nul"), 0);
}

}  // namespace

}  // namespace vel::platform
