// Tests the properties of paths (style, network name, drive, absoluteness), and directory names with their
// final separator. fuzz/path_fuzz.cpp tests names at the length limit.
#include "platform/test/test.h"
#include "vel_include/vel_filesys.h"

namespace {

using vel::test::readTable;

/// Returns "\\" or "/" for the style, then D for a drive, A for absolute, U for a network name, and the path
/// proper.
std::string analysed(const char* text) {
  const VelClPathProperty property(text);
  EXPECT_EQ(property.getPathSep() == '/', property.isCaseSensitive());
  return std::string(1, property.getPathSep()) + (property.hasDrive() ? "D" : "") +
         (property.isAbsolute() ? "A" : "") + (property.isUNC() ? "U" : "") + " " + property.getPtrToPath();
}

// Intentional: "\\usr" and "C:/dir" are not absolute. Any character can be a drive, but only a letter selects
// the style.
TEST(PathProperty, AnalysesText) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/path_properties.tsv"))
    EXPECT_EQ(row.at(1), analysed(row[0].c_str()));
  EXPECT_EQ("\\ ", analysed(nullptr));
}

TEST(PathProperty, NormalizesInPlace) {
  char text[] = "//srv/a\\b/";
  EXPECT_FALSE(VelClPathProperty(text).isNormalized());
  VelClPathProperty::normalizePath(text);
  EXPECT_STREQ("\\\\srv\\a\\b\\", text);
  // Slashes in the network name do not count.
  EXPECT_TRUE(VelClPathProperty("\\\\s/r\\share\\x").isNormalized());
}

// Intentional: the separator is chosen before normalizing. Normalizing does not change or create a network
// name.
TEST(Location, EndsWithItsStylesSeparator) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/locations.tsv")) {
    const VelClLocation location(row[0].c_str(), row.at(2) == "yes");
    VelClLocation copy("", false);
    copy = location;
    EXPECT_EQ(row[1], copy.getAsCString());
    EXPECT_EQ(VelClPathProperty(row[1].c_str()).getPathSep(), copy.getPathSep()) << row[1];
    EXPECT_EQ(location.isRoot(), row.at(3) == "yes") << row[1];
    EXPECT_EQ(copy.isRoot(), location.isRoot()) << row[1];
  }
  EXPECT_STREQ("", VelClLocation(nullptr, false).getAsCString());
}

TEST(Location, IsBuiltFromTextsAndFileNames) {
  EXPECT_STREQ("C:\\d\\", VelClLocation(VelClFilename("C:\\d\\x.txt"), false).getAsCString());
  EXPECT_STREQ("\\\\s\\h\\", VelClLocation(VelClFilename("\\\\s\\h"), false).getAsCString());
  EXPECT_STREQ("/usr/", VelClLocation("/usr/lib", 4, false).getAsCString());
  EXPECT_STREQ("ab\\", VelClLocation("ab\0c", 4, false).getAsCString());
  VelClLocation location("C:\\a\\b", false);
  location = location.getAsCString() + 3;
  EXPECT_STREQ("a\\b\\", location.getAsCString());
}

}  // namespace
