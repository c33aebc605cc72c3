// Where message catalogs are found.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/platform.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;

std::string pathVariable() {
  const char* const value = std::getenv("PATH");
  return value == nullptr ? "" : value;
}

/// A current directory and a search path of two directories.
class CatalogSearch : public testing::Test {
 protected:
  CatalogSearch() : directory_(fs::current_path()), path_(pathVariable()) {
    fs::create_directory(scratch_.path("here"));
    fs::current_path(scratch_.path("here"));
    setenv("PATH", ("/nowhere::" + scratch_.path("first") + ":" + scratch_.path("second")).c_str(), 1);
  }
  ~CatalogSearch() override {
    fs::current_path(directory_);
    setenv("PATH", path_.c_str(), 1);
  }

  /// The contents of the catalog found, "-" when there is none.
  static std::string find(const std::string& name) {
    CatalogImage image{};
    if (!openCatalog(name.c_str(), image)) return "-";
    std::string contents(reinterpret_cast<const char*>(image.data), image.sizeInBytes);
    closeCatalog(image);
    EXPECT_EQ(image.data, nullptr);
    return contents;
  }

  test::ScratchDirectory scratch_;

 private:
  fs::path directory_;
  std::string path_;
};

TEST_F(CatalogSearch, LooksInTheCurrentDirectoryThenAlongThePath) {
  EXPECT_EQ(find("msgs.DLL"), "-");
  scratch_.write("second/msgs.DLL", "second");
  EXPECT_EQ(find("msgs.DLL"), "second");
  scratch_.write("first/msgs.DLL", "first");
  EXPECT_EQ(find("msgs.DLL"), "first");
  scratch_.write("here/msgs.DLL", "here");
  EXPECT_EQ(find("msgs.DLL"), "here");
}

TEST_F(CatalogSearch, OtherLetterCaseComesLast) {
  scratch_.write("here/MSGS.dll", "other case");
  EXPECT_EQ(find("msgs.DLL"), "other case");
  scratch_.write("second/msgs.DLL", "exact");
  EXPECT_EQ(find("msgs.DLL"), "exact");
}

TEST_F(CatalogSearch, PassesOverWhatIsNoFileWithContents) {
  fs::create_directory(scratch_.path("here/msgs.DLL"));
  scratch_.write("first/msgs.DLL", "");
  EXPECT_EQ(find("msgs.DLL"), "-");
  scratch_.write("second/msgs.DLL", "second");
  EXPECT_EQ(find("msgs.DLL"), "second");
  ASSERT_EQ(mkfifo(scratch_.path("here/pipe.DLL").c_str(), 0600), 0);
  EXPECT_EQ(find("pipe.DLL"), "-");
}

TEST_F(CatalogSearch, ADirectoryIsTheOnlyPlace) {
  scratch_.write("first/msgs.DLL", "first");
  scratch_.write("here/Sub/Msgs.DLL", "sub");
  EXPECT_EQ(find("./msgs.DLL"), "-");
  EXPECT_EQ(find("C:msgs.DLL"), "-");
  EXPECT_EQ(find("sub\\msgs.dll"), "sub");
  EXPECT_EQ(find("sub/msgs.dll"), "-");
  EXPECT_EQ(find(scratch_.path("first/msgs.DLL")), "first");
  EXPECT_EQ(find(""), "-");
  EXPECT_EQ(find(std::string(300, 'x') + "\\msgs.DLL"), "-");
  EXPECT_EQ(find(std::string(5000, 'x')), "-");
}

}  // namespace

}  // namespace vel::platform
