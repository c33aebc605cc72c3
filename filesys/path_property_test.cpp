// Style, network part, drive and absoluteness, from the text alone.
#include <gtest/gtest.h>

#include <string>

#include "vel_include/vel_filesys.h"

namespace {

TEST(PathProperty, AnalysesText) {
  struct Row {
    const char* text;
    const char* path;
    char style;  // the separator
    bool hasDrive;
    bool isAbsolute;
  };
  const Row rows[] = {
      {"C:\\dir\\x.txt", "C:\\dir\\x.txt", '\\', true, true},
      {"/usr/x", "/usr/x", '/', false, true},
      // Neither of these two is absolute.
      {"\\usr\\x", "\\usr\\x", '\\', false, false},
      {"C:/dir", "C:/dir", '\\', true, false},
      {"1:\\x", "1:\\x", '\\', true, true},
      {"1:/x", "1:/x", '/', true, false},
      {"a/b\\c", "a/b\\c", '\\', false, false},
      {"x.txt", "x.txt", '\\', false, false},
      {"C:", "C:", '\\', true, false},
      {":", ":", '\\', false, false},
      {"", "", '\\', false, false},
      {nullptr, "", '\\', false, false},
      {"\\\\srv\\share\\dir", "\\dir", '\\', false, true},
      {"\\\\srv\\share", "", '\\', false, true},
      {"\\\\srv\\", "", '\\', false, true},
      {"\\\\srv", "\\\\srv", '\\', false, false},
      {"\\\\\\a", "\\\\\\a", '\\', false, false},
      {"\\\\\\a\\b\\c", "\\c", '\\', false, true},
      {"\\\\a", "\\\\a", '\\', false, false},
      {"\\\\", "\\\\", '\\', false, false},
      {"\\\\s\\h\\:", "\\:", '\\', true, true},
  };
  for (const Row& row : rows) {
    const VelClPathProperty property(row.text);
    const std::string shown = row.text != nullptr ? row.text : "(null)";
    EXPECT_STREQ(row.path, property.getPtrToPath()) << shown;
    EXPECT_EQ(row.style, property.getPathSep()) << shown;
    EXPECT_EQ(row.style == '/', property.isCaseSensitive()) << shown;
    EXPECT_EQ(row.hasDrive, property.hasDrive()) << shown;
    EXPECT_EQ(row.isAbsolute, property.isAbsolute()) << shown;
    EXPECT_EQ(property.getPtrToPath() != property.getAsCString(), property.isUNC()) << shown;
  }
}

TEST(PathProperty, NormalizesInPlace) {
  char text[] = "//srv/a\\b/";
  EXPECT_FALSE(VelClPathProperty(text).isNormalized());
  VelClPathProperty::normalizePath(text);
  EXPECT_STREQ("\\\\srv\\a\\b\\", text);
  EXPECT_TRUE(VelClPathProperty(text).isNormalized());
  // The network part may keep its slashes.
  EXPECT_TRUE(VelClPathProperty("\\\\s/r\\share\\x").isNormalized());
}

}  // namespace
