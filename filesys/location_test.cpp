// What the text of a path tells: style, network part, drive and absoluteness; and directory names with their
// final separator.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "vel_include/vel_filesys.h"

namespace {

constexpr size_t kLimit = VEL_MAX_PATH_LENGTH;

// "\\" or "/" for the style, then D for a drive, A for absolute, U for a network name, and the path proper.
std::string analysed(const char* text) {
  const VelClPathProperty property(text);
  EXPECT_EQ(property.getPathSep() == '/', property.isCaseSensitive());
  return std::string(1, property.getPathSep()) + (property.hasDrive() ? "D" : "") +
         (property.isAbsolute() ? "A" : "") + (property.isUNC() ? "U" : "") + " " + property.getPtrToPath();
}

// "\\usr" and "C:/dir" are not absolute. A drive needs no letter, but its style does.
TEST(PathProperty, AnalysesText) {
  const struct {
    const char *text, *analysis;
  } rows[] = {{"/usr/x", "/A /usr/x"},   {":", "\\ :"},       {"\\usr\\x", "\\ \\usr\\x"},
              {"1:\\x", "\\DA 1:\\x"},   {"C:", "\\D C:"},    {"\\\\srv\\share", "\\AU "},
              {"a/b\\c", "\\ a/b\\c"},   {nullptr, "\\ "},    {"\\\\srv\\share\\dir", "\\AU \\dir"},
              {"C:/dir", "\\D C:/dir"},  {"\\\\", "\\ \\\\"}, {"C:\\dir\\x.txt", "\\DA C:\\dir\\x.txt"},
              {"\\\\srv", "\\ \\\\srv"}, {"1:/x", "/D 1:/x"}, {"\\\\\\a", "\\ \\\\\\a"},
              {"\\\\srv\\", "\\AU "}};
  for (const auto& row : rows) EXPECT_EQ(row.analysis, analysed(row.text));
}

TEST(PathProperty, NormalizesInPlace) {
  char text[] = "//srv/a\\b/";
  EXPECT_FALSE(VelClPathProperty(text).isNormalized());
  VelClPathProperty::normalizePath(text);
  EXPECT_STREQ("\\\\srv\\a\\b\\", text);
  // The network part may keep its slashes.
  EXPECT_TRUE(VelClPathProperty("\\\\s/r\\share\\x").isNormalized());
}

// The separator is chosen before normalizing, which leaves a server part alone and makes none.
TEST(Location, EndsWithItsStylesSeparator) {
  const struct {
    const char *text, *location;
    bool normalize, isRoot;
  } rows[] = {{"", "", true, false},         {"/usr", "/usr/", false, false},
              {"/", "/", false, true},       {"C:/a/", "C:\\a\\\\", true, false},
              {"a", "a\\", false, false},    {"//srv/share", "\\\\srv\\share\\", true, false},
              {"\\", "\\", false, false},    {"\\\\srv\\share", "\\\\srv\\share\\", false, true},
              {nullptr, "", false, false},   {"\\\\s/r\\h\\a/b", "\\\\s/r\\h\\a\\b\\", true, false},
              {"C:", "C:\\", false, true},   {"\\\\srv\\share\\d", "\\\\srv\\share\\d\\", false, false},
              {"a/b", "a\\b\\", true, false}};
  for (const auto& row : rows) {
    const VelClLocation location(row.text, row.normalize);
    VelClLocation copy("", false);
    copy = location;
    EXPECT_STREQ(row.location, copy.getAsCString());
    EXPECT_EQ(VelClPathProperty(row.location).getPathSep(), copy.getPathSep()) << row.location;
    EXPECT_EQ(row.isRoot, location.isRoot() && copy.isRoot()) << row.location;
  }
}

TEST(Location, IsTakenFromTextsAndFileNames) {
  EXPECT_STREQ("C:\\d\\", VelClLocation(VelClFilename("C:\\d\\x.txt"), false).getAsCString());
  EXPECT_STREQ("\\\\s\\h\\", VelClLocation(VelClFilename("\\\\s\\h"), false).getAsCString());
  EXPECT_STREQ("/usr/", VelClLocation("/usr/lib", 4, false).getAsCString());
  EXPECT_STREQ("ab\\", VelClLocation("ab\0c", 4, false).getAsCString());
  VelClLocation location("C:\\a\\b", false);
  location = location.getAsCString() + 3;
  EXPECT_STREQ("a\\b\\", location.getAsCString());
}

TEST(Location, KeepsRoomForTheSeparator) {
  for (size_t length = kLimit - 2; length <= kLimit + 2; ++length) {
    const VelClLocation location(std::string(length, 'x').c_str(), false);
    EXPECT_EQ(std::string(std::min(length, kLimit - 1), 'x') + "\\", location.getAsCString());
    const std::string separated = std::string(length - 3, 'x') + "\\";
    EXPECT_EQ(separated.substr(0, kLimit), VelClLocation(separated.c_str(), false).getAsCString());
  }
  const std::string cutBehindSeparator = std::string(kLimit - 2, 'x') + "\\";
  EXPECT_EQ(cutBehindSeparator, VelClLocation((cutBehindSeparator + "yz").c_str(), false).getAsCString());
}

}  // namespace
