// Tests the translation of names, and names whose meaning the plain calls of Windows would change.
#include "platform/windows/wide_path.h"

#include <cwchar>

#include "platform/test/test.h"
#include "platform/test/windows/wine.h"
#include "vel_include/vel_files.h"

namespace vel::platform {

namespace {

std::wstring translated(const std::wstring& name) {
  GrowingText text;
  return translate(name, text) ? std::wstring(text.view()) : L"failed";
}

std::wstring currentDirectoryOf(const wchar_t* name) {
  wchar_t full[1000] = L"";
  GetFullPathNameW(name, 1000, full, nullptr);
  std::wstring text = std::wstring(L"\\\\?\\") + full;
  return text.ends_with(L"\\") ? text : text + L"\\";
}

TEST(WidePath, IsTranslatedToTheFormWithPrefix) {
  const std::wstring here = currentDirectoryOf(L"."), root = currentDirectoryOf(L"\\");
  const std::pair<std::wstring, std::wstring> rows[] = {
      {L"C:\\a", L"\\\\?\\C:\\a"},
      {L"C:/a/b", L"\\\\?\\C:\\a\\b"},
      {L"C:\\a\\.\\b\\..\\c\\", L"\\\\?\\C:\\a\\c"},
      {L"C:\\", L"\\\\?\\C:\\"},
      {L"C:\\..\\..\\a", L"\\\\?\\C:\\a"},
      {L"C:\\a. \\b..", L"\\\\?\\C:\\a. \\b.."},
      {L"C:\\a\\...", L"\\\\?\\C:\\a\\..."},
      {L"\\\\server\\share\\a\\..\\..\\b", L"\\\\?\\UNC\\server\\share\\b"},
      {L"//server/share/a", L"\\\\?\\UNC\\server\\share\\a"},
      {L"\\\\?\\C:\\a/b\\..\\c.", L"\\\\?\\C:\\a/b\\..\\c."},
      {L"\\\\.\\pipe\\x", L"\\\\.\\pipe\\x"},
      {L"C:\\x\\NUL", L"\\\\.\\NUL"},
      {L"con", L"\\\\.\\con"},
      {L"a\\b", here + L"a\\b"},
      {L".\\a", here + L"a"},
      {L"\\a", root + L"a"},
      {L"C:a ", currentDirectoryOf(L"C:.") + L"a "},
      {std::wstring(L"C:\\") + std::wstring(3000, L'x') + L"\\..\\y", L"\\\\?\\C:\\y"}};
  for (const auto& [name, expected] : rows) EXPECT_EQ(translated(name), expected);
}

TEST(WidePath, StaysAsItIsIfItHasAUsualLength) {
  for (const char* const name :
       {"a", "C:\\a\\b", "C:/a/./b", "a\\..\\b", "\\\\server\\share\\a", "NUL", "C:a", "..", "."})
    EXPECT_FALSE(WidePath(name).view().starts_with(L"\\\\?\\")) << name;
  for (const std::string& name : {"C:\\" + std::string(250, 'x'), "a\\" + std::string(250, 'x'),
                                  std::string("a."), std::string("C:\\a \\b"), std::string("..\\a...")})
    EXPECT_TRUE(WidePath(name.c_str()).view().starts_with(L"\\\\?\\")) << name;
  for (const char* const bytes : {"\xFF", "a\xC3", "\xED\xA0\x80"})
    EXPECT_EQ(WidePath(bytes).error(), DWORD{ERROR_NO_UNICODE_TRANSLATION});
  EXPECT_EQ(WidePath(std::string(200'000, 'x').c_str()).error(), DWORD{ERROR_FILENAME_EXCED_RANGE});
}

TEST(WindowsNames, ThatEndInBlanksOrDotsAreTheirOwn) {
  const test::ScratchDirectory scratch;
  for (const char* const name : {"name", "name.", "name ", "name. ."})
    EXPECT_TRUE(velFileReplace(scratch.path(name), name).isOk()) << name;
  std::set<std::string> found;
  VelClFileWalk walk;
  EXPECT_TRUE(walk.open(scratch.path()).isOk());
  while (walk.next()) {
    VelClReturnedText text;
    EXPECT_TRUE(velFileRead(walk.getPath(), 100, text).isOk()) << walk.getPath();
    EXPECT_EQ(text.view(), walk.getName());
    found.insert(std::string(walk.getName()));
  }
  EXPECT_EQ(found, (std::set<std::string>{"name", "name.", "name ", "name. ."}));
  EXPECT_TRUE(velFileRemove(scratch.path("name.")).isOk());
  EXPECT_TRUE(velFileExists(scratch.path("name")));
  for (const char* const name : {"name ", "name. ."}) EXPECT_TRUE(velFileRemove(scratch.path(name)).isOk());
}

TEST(WindowsNames, ThatAreIllFormedAreRefused) {
  const VelClStatus status = velFileRemove("\xFF");
  EXPECT_EQ(status.getErrorId(), +PATH_INVALID);
  EXPECT_EQ(status.getSystemError(), DWORD{ERROR_NO_UNICODE_TRANSLATION});
  const test::ScratchDirectory scratch;
  const std::wstring name = std::filesystem::path(scratch.path()).wstring() + L"\\\xD83D";
  const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) GTEST_SKIP() << "no such names here";
  CloseHandle(file);
  VelClFileWalk walk;
  EXPECT_TRUE(walk.open(scratch.path()).isOk());
  EXPECT_TRUE(walk.next());
  EXPECT_FALSE(walk.isOk());
  EXPECT_FALSE(walk.next());
  EXPECT_TRUE(velTreeRemove(scratch.path()).isOk());
}

TEST(WindowsLinks, AreNeitherEnteredNorRemovedThrough) {
  const test::ScratchDirectory scratch;
  const std::string file = scratch.write("outside\\file", "kept");
  scratch.write("tree\\sub\\file", "text");
  const bool isRemovable = test::unixName(file).empty();
  const test::Link link(scratch.path("tree\\sub\\link"), scratch.path("outside")),
      loop(scratch.path("tree\\sub\\loop"), scratch.path("tree"));
  if (!link.isMade() || !loop.isMade()) GTEST_SKIP() << "this user may not make links";
  const auto walked = [&](bool followsLinks) {
    std::set<std::string> names;
    VelStFileWalkOptions options{};
    options.followsLinks = followsLinks;
    VelClFileWalk walk;
    EXPECT_TRUE(walk.open(scratch.path("tree"), options).isOk());
    while (walk.next()) names.insert(std::string(walk.getName()) + (walk.isOk() ? "" : "!"));
    return names;
  };
  EXPECT_EQ(walked(false), (std::set<std::string>{"sub", "file", "link", "loop"}));
  EXPECT_EQ(walked(true), (std::set<std::string>{"sub", "file", "link", "loop", "loop!"}));
  EXPECT_EQ(velTreeRemove(scratch.path("tree")).isOk(), isRemovable);
  EXPECT_EQ(test::readFile(file), "kept");
}

}  // namespace

}  // namespace vel::platform
