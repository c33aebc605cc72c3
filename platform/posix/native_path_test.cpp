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
  NativePathTest() {
    for (const char* entry :
         {"Dir/Sub/File.txt", "twice/a", "twice/A", "twice/B.txt", "twice/b.TXT", "\xC4.txt"})
      scratch_.write(entry, "x");
    fs::create_symlink("Dir", scratch_.path("Link"));
    fs::create_symlink("nowhere", scratch_.path("Broken"));
  }

  test::ScratchDirectory scratch_;
  test::CurrentDirectory in_{scratch_.path()};
};

// What matches nothing stays as typed, and so does all behind it. The exact name comes first, else the first
// in byte order. Only ASCII letters are folded, and nothing in names with slashes.
TEST_F(NativePathTest, TranslatesBackSlashNames) {
  const struct {
    const char *name, *path;
  } rows[] = {{".\\dir\\..\\DIR\\sub\\", "./Dir/../Dir/Sub/"},
              {"twice\\a", "twice/a"},
              {"dir\\sub\\file.txt\\X", "Dir/Sub/File.txt/X"},
              {"TWICE\\A", "twice/A"},
              {"\\\\server\\share\\x", "//server/share/x"},
              {"broken", "Broken"},
              {"LINK\\sub\\file.txt", "Link/Sub/File.txt"},
              {"C:/TMP", "/tmp"},
              {"dir\\SUB\\file.TXT", "Dir/Sub/File.txt"},
              {"1:\\x", "1:/x"},
              {"dir/sub\\FILE.txt", "Dir/Sub/File.txt"},
              {"C:DIR", "Dir"},
              {"dir\\sub\\file.tx", "Dir/Sub/file.tx"},
              {"/TMP", "/TMP"},
              {"dir/sub/file.txt", "dir/sub/file.txt"},
              {"dir", "Dir"},
              {"dir\\New\\FILE", "Dir/New/FILE"},
              {"c:\\", "/"},
              {"twice\\B.TXT", "twice/B.txt"},
              {"C:", "."},
              {"\xC4.TXT", "\xC4.txt"},
              {"", ""},
              {"\xE4.txt", "\xE4.txt"}};
  for (const auto& row : rows) EXPECT_STREQ(NativePath(row.name).get(), row.path) << row.name;
  const NativePath absolute(test::backSlashed(scratch_.path("DIR\\sub\\FILE.txt")).c_str());
  EXPECT_EQ(absolute.get(), scratch_.path("Dir/Sub/File.txt"));
  EXPECT_STREQ(NativePath("dir\\SUB\\file.TXT", NativePath::Match::AllButLast).get(), "Dir/Sub/file.TXT");
  EXPECT_STREQ(NativePath("\\TMP", NativePath::Match::AllButLast).get(), "/TMP");
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
