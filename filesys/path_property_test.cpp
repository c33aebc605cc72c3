// Style, network part, drive and absoluteness, from the text alone.
#include <gtest/gtest.h>

#include <string>

#include "vel_include/vel_filesys.h"

namespace {

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
  } rows[] = {{"C:\\dir\\x.txt", "\\DA C:\\dir\\x.txt"},
              {"C:/dir", "\\D C:/dir"},
              {"\\\\", "\\ \\\\"},
              {"\\\\srv\\share\\dir", "\\AU \\dir"},
              {"/usr/x", "/A /usr/x"},
              {"C:", "\\D C:"},
              {"\\usr\\x", "\\ \\usr\\x"},
              {"1:\\x", "\\DA 1:\\x"},
              {nullptr, "\\ "},
              {"\\\\srv\\share", "\\AU "},
              {"a/b\\c", "\\ a/b\\c"},
              {":", "\\ :"},
              {"\\\\srv", "\\ \\\\srv"},
              {"\\\\srv\\", "\\AU "},
              {"\\\\\\a", "\\ \\\\\\a"},
              {"1:/x", "/D 1:/x"}};
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

}  // namespace
