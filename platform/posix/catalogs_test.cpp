// Where message catalogs are found.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "platform/platform.h"
#include "platform/test/variable.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;

/// A current directory and a search path of two directories.
class CatalogSearch : public testing::Test {
 protected:
  CatalogSearch() { scratch_.write("here/x", ""); }

  /// The contents of the catalog found, "-" when there is none.
  std::string find(const std::string& name) {
    const test::CurrentDirectory in(scratch_.path("here"));
    const std::string path = "/nowhere::" + scratch_.path("first") + ":" + scratch_.path("second");
    const test::Variable variable("PATH", path.c_str());
    CatalogImage image{};
    if (!openCatalog(name.c_str(), image)) return "-";
    std::string contents(reinterpret_cast<const char*>(image.data), image.sizeInBytes);
    closeCatalog(image);
    EXPECT_EQ(image.data, nullptr);
    return contents;
  }

  test::ScratchDirectory scratch_;
};

TEST_F(CatalogSearch, LooksInTheCurrentDirectoryThenAlongThePathThenForOtherLetterCase) {
  EXPECT_EQ(find("msgs.DLL"), "-");
  scratch_.write("here/MSGS.dll", "other case");
  EXPECT_EQ(find("msgs.DLL"), "other case");
  for (const char* directory : {"second", "first", "here"}) {
    scratch_.write(std::string(directory) + "/msgs.DLL", directory);
    EXPECT_EQ(find("msgs.DLL"), directory);
  }
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
  EXPECT_EQ(find("sub\\msgs.dll"), "sub");
  EXPECT_EQ(find(scratch_.path("first/msgs.DLL")), "first");
  for (const std::string& name :
       {std::string(), std::string("./msgs.DLL"), std::string("C:msgs.DLL"), std::string("sub/msgs.dll"),
        std::string(300, 'x') + "\\msgs.DLL", std::string(5000, 'x')})
    EXPECT_EQ(find(name), "-") << name;
}

}  // namespace

}  // namespace vel::platform
