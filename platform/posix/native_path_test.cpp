#include "platform/posix/native_path.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;

/// A current directory with entries in all spellings.
class NativePathTest : public testing::Test {
 protected:
  NativePathTest() : before_(fs::current_path()) {
    for (const char* entry :
         {"Dir/Sub/File.txt", "twice/a", "twice/A", "twice/B.txt", "twice/b.TXT", "\xC4.txt"})
      scratch_.write(entry, "x");
    fs::create_symlink("Dir", scratch_.path("Link"));
    fs::create_symlink("nowhere", scratch_.path("Broken"));
    fs::current_path(scratch_.path());
  }
  ~NativePathTest() override { fs::current_path(before_); }

  test::ScratchDirectory scratch_;

 private:
  fs::path before_;
};

TEST_F(NativePathTest, TranslatesBackSlashNames) {
  struct Row {
    const char* name;
    const char* path;
  };
  const Row rows[] = {
      {"", ""},
      {"C:", "."},
      {"c:\\", "/"},
      {"C:/TMP", "/tmp"},
      {"C:DIR", "Dir"},
      {"1:\\x", "1:/x"},
      {"\\\\server\\share\\x", "//server/share/x"},
      {"dir\\SUB\\file.TXT", "Dir/Sub/File.txt"},
      {".\\dir\\..\\DIR\\sub\\", "./Dir/../Dir/Sub/"},
      {"dir/sub\\FILE.txt", "Dir/Sub/File.txt"},
      {"LINK\\sub\\file.txt", "Link/Sub/File.txt"},
      {"broken", "Broken"},
      {"dir", "Dir"},
      // What matches nothing stays as typed, and so does all behind it.
      {"dir\\New\\FILE", "Dir/New/FILE"},
      {"dir\\sub\\file.txt\\X", "Dir/Sub/File.txt/X"},
      {"dir\\sub\\file.tx", "Dir/Sub/file.tx"},
      // The exact name first, else the first in byte order.
      {"twice\\a", "twice/a"},
      {"TWICE\\A", "twice/A"},
      {"twice\\B.TXT", "twice/B.txt"},
      // Only ASCII letters are folded.
      {"\xC4.TXT", "\xC4.txt"},
      {"\xE4.txt", "\xE4.txt"},
      // Slash style.
      {"dir/sub/file.txt", "dir/sub/file.txt"},
      {"/TMP", "/TMP"},
  };
  for (const Row& row : rows) {
    const NativePath path(row.name);
    ASSERT_TRUE(path.fits()) << row.name;
    EXPECT_STREQ(path.get(), row.path) << row.name;
  }
}

TEST_F(NativePathTest, MatchesAbsoluteNames) {
  std::string name = "C:" + scratch_.path("DIR\\sub\\FILE.txt");
  for (char& c : name)
    if (c == '/') c = '\\';
  const NativePath path(name.c_str());
  EXPECT_EQ(path.get(), scratch_.path("Dir/Sub/File.txt"));
}

TEST_F(NativePathTest, LastComponentAsTyped) {
  struct Row {
    const char* name;
    const char* path;
  };
  for (const Row& row : {Row{"dir\\SUB\\file.TXT", "Dir/Sub/file.TXT"}, {"DIR", "DIR"}, {"\\TMP", "/TMP"}}) {
    const NativePath path(row.name, NativePath::Match::AllButLast);
    EXPECT_STREQ(path.get(), row.path) << row.name;
  }
}

TEST(NativePath, LongNamesAreRefusedAndNeverCut) {
  const std::string component(50, 'x');
  std::string name = "C:\\";
  while (name.size() < 260) name += component + '\\';
  name.resize(260);
  EXPECT_TRUE(NativePath(name.c_str()).fits());
  name += 'x';
  EXPECT_FALSE(NativePath(name.c_str()).fits());
  const std::string slashName(1000, '/');
  EXPECT_EQ(NativePath(slashName.c_str()).get(), slashName.c_str());
}

}  // namespace

}  // namespace vel::platform
