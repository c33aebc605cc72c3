// Import thunks, platform identifiers, terminals, code pages and replaced links; and the public
// headers beside windows.h, which defines some of their names as macros.
#include <windows.h>

// windows.h comes first.
#include "vel_include/vel.h"
#include "vel_include/vel_c.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>

#include "platform/byte_files.h"
#include "platform/file_copy.h"
#include "platform/launching.h"
#include "platform/replacing.h"
#include "platform/system.h"
#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

// Both macros are as they were.
static_assert(static_cast<int>(VelEnErrorAction::NO_ACTION) == IGNORE && VEL_NO_ERROR == NO_ERROR);

namespace vel::platform {

namespace {

/// A jump through a table entry, in front of or behind it.
struct Thunk {
  std::array<std::uint8_t, 8> code;
  const void* entry;

  void jumpTo(const void* target) {
    const std::int32_t distance = offsetof(Thunk, entry) - 6;
    code = {0xFF, 0x25};
    std::memcpy(code.data() + 2, &distance, sizeof distance);
    entry = target;
  }
};

TEST(WindowsSystem, ThunksLeadToTheFunctionOfAnNtSystem) {
  const std::uint8_t function[] = {0xFF, 0x24, 0, 0, 0, 0};
  Thunk inner{}, outer{}, endless{};
  inner.jumpTo(function);
  outer.jumpTo(&inner);
  endless.jumpTo(&endless);
  for (const void* start : {static_cast<const void*>(function), static_cast<const void*>(&outer)})
    EXPECT_EQ(resolveImportThunk(start), function);
  EXPECT_EQ(resolveImportThunk(nullptr), nullptr);
  EXPECT_EQ(resolveImportThunk(&endless), &endless);
  EXPECT_EQ(windowsPlatformId(), 2);
}

TEST(WindowsSystem, TheNullDeviceIsNoTerminal) {
  const int null = _open("NUL", _O_WRONLY);
  EXPECT_TRUE(null >= 0 && !isTerminal(null));
  _close(null);
}

/// Wine makes no links to files, but follows those that its host makes; it cannot wait for that.
bool makeLink(const char* name, const char* target) {
  const auto isThere = [name] { return GetFileAttributesA(name) != INVALID_FILE_ATTRIBUTES; };
  CreateSymbolicLinkA(name, target, SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE);
  if (isThere()) return true;
  std::string commandLine = std::string("Z:\\bin\\ln -s ") + target + ' ' + name;
  std::uint32_t exitCode = 0;
  const std::uint32_t error = launchAndWait({commandLine.data(), nullptr, false}, exitCode);
  const bool hasHost = error != ERROR_PATH_NOT_FOUND && error != ERROR_FILE_NOT_FOUND;
  return hasHost && test::waitUntil(isThere);
}

TEST(WindowsSystem, ReplacingLeavesLinks) {
  const test::ScratchDirectory scratch;
  const test::CurrentDirectory here(scratch.path());
  const std::string file = scratch.write("deep\\file", "old");
  if (!makeLink("link", "deep/file")) GTEST_SKIP() << "no links here";
  Replacement replacement;
  EXPECT_EQ(startReplacement("link", replacement), 0);
  EXPECT_EQ(writeBytes(replacement.descriptor, "new", 3), 0);
  EXPECT_EQ(finishReplacement(replacement), 0);
  EXPECT_EQ(test::readFile(file), "new");
  SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(startReplacement("link", replacement), EACCES);
  SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_NORMAL);
  // Without its file it could not be removed under Wine.
  DeleteFileA("link");
}

TEST(WindowsSystem, UnfinishedFilesEndWithTheirProgram) {
  const test::ScratchDirectory scratch;
  const std::string file = scratch.write("file", "old");
  Replacement replacement;
  ASSERT_EQ(startReplacement(file.c_str(), replacement), 0);
  EXPECT_NE(GetFileAttributesA(replacement.temporary), INVALID_FILE_ATTRIBUTES);
  // As the system does at the end of a program.
  _close(replacement.descriptor);
  EXPECT_EQ(GetFileAttributesA(replacement.temporary), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(test::readFile(file), "old");
}

TEST(WindowsSystem, ReplacingLosesNothingWhenAnotherFileTakesTheName) {
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
  EXPECT_EQ(GetFileAttributesA(replacement.temporary), INVALID_FILE_ATTRIBUTES);
}

TEST(WindowsSystem, CopiesWhereTheTargetIsOpenOrItsNameIsLong) {
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
