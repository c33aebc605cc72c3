// Splitting, joining, comparing and changing file names, up to the length limit and with texts that
// are part of the name itself.
#include <gtest/gtest.h>

#include <string>

#include "vel_include/vel_filesys.h"

namespace {

constexpr size_t kLimit = VEL_MAX_PATH_LENGTH;

std::string extracted(const VelClFilename& name, void (VelClFilenameABase::*part)(char*) const) {
  char out[kLimit + 1];
  (name.*part)(out);
  return out;
}

std::string pathOf(const VelClFilename& name, bool withSeparator) {
  char out[kLimit + 1];
  name.extractPath(out, withSeparator);
  return out;
}

TEST(Filename, SplitsIntoParts) {
  struct Row {
    const char* text;
    const char* server;
    const char* path;
    const char* base;
    const char* extension;
  };
  const Row rows[] = {
      {"C:\\dir\\x.tar.gz", "", "C:\\dir", "x.tar", ".gz"},
      {"C:\\x", "", "C:", "x", ""},
      {"C:x.txt", "", "", "C:x", ".txt"},
      {"/usr/.profile", "", "/usr", "", ".profile"},
      // A back-slash anywhere makes "/" part of the name.
      {"a/b\\c/d", "", "a/b", "c/d", ""},
      {"dir.d\\x", "", "dir.d", "x", ""},
      {"dir\\", "", "dir", "", ""},
      {"a.", "", "", "a", "."},
      {"\\\\srv\\share\\d\\x.c", "\\\\srv\\share", "\\\\srv\\share\\d", "x", ".c"},
      {"\\\\srv\\share", "\\\\srv\\share", "", "", ""},
      {"\\\\srv", "", "\\", "srv", ""},
      {"", "", "", "", ""},
  };
  for (const Row& row : rows) {
    const VelClFilename name(row.text);
    EXPECT_EQ(row.server, extracted(name, &VelClFilename::extractServer)) << row.text;
    EXPECT_EQ(row.path, pathOf(name, false)) << row.text;
    EXPECT_EQ(row.base, extracted(name, &VelClFilename::extractBaseName)) << row.text;
    EXPECT_STREQ(row.extension, name.getExtension()) << row.text;
    EXPECT_EQ(std::string(row.base) + row.extension, name.getName());
    EXPECT_EQ(name.hasPath(), !pathOf(name, true).empty());
    EXPECT_TRUE(!name.hasPath() || row.text == pathOf(name, true) + name.getName()) << row.text;
  }
}

TEST(Filename, JoinsDirectoryNameAndExtension) {
  struct Row {
    const char* path;
    const char* name;
    const char* extension;
    const char* joined;
  };
  const Row rows[] = {
      {"C:\\a", "x", "txt", "C:\\a\\x.txt"},
      {"C:\\a\\", "x", ".txt", "C:\\a\\x.txt"},
      {"/usr", "x", nullptr, "/usr/x"},
      {"C:", "x", nullptr, "C:\\x"},
      {"", "x", "", "x."},
      {"\\\\srv\\share", "x", "y", "\\\\srv\\share\\x.y"},
      {"usr", "x.a", "b", "usr\\x.a.b"},
      {nullptr, nullptr, nullptr, ""},
  };
  for (const Row& row : rows)
    EXPECT_STREQ(row.joined,
                 VelClFilename(VelClLocation(row.path, false), row.name, row.extension).getAsCString())
        << row.joined;
}

TEST(Filename, ComparesWithOthersInItsOwnStyle) {
  struct Row {
    const char* name;
    const char* other;
    bool isEqual;
    bool matchesPath;
    bool matchesBase;
  };
  const Row rows[] = {
      {"C:\\D\\A.txt", "c:\\d\\a.TXT", true, true, true},
      {"C:\\D\\A.txt", "c:\\d\\a.tx", false, true, true},
      {"/D/A.txt", "/D/A.txt", true, true, true},
      {"/D/A.txt", "/d/a.txt", false, false, false},
      // Only this name's directory counts: the other may lie deeper, not higher.
      {"C:\\D\\A", "c:\\d\\deeper\\b", false, true, false},
      {"C:\\D\\A", "c:\\A.x", false, false, true},
      {"A", "C:\\D\\A", false, true, true},
      {"C:\\D\\A", "C:", false, false, false},
      // The longer base name decides how much is compared, extensions included.
      {"a.txt", "ab.txt", false, true, false},
      {"ab.txt", "a.txt", false, true, false},
      {"a.b", "a.b.c", false, true, true},
      {"\xE4", "\xC4", false, true, false},
  };
  for (const Row& row : rows) {
    const VelClFilename name(row.name);
    const VelClFilename other(row.other);
    EXPECT_EQ(row.isEqual, name == other) << row.name << ", " << row.other;
    EXPECT_EQ(row.matchesPath, name.matchesPath(other)) << row.name << ", " << row.other;
    EXPECT_EQ(row.matchesBase, name.matchesBase(other)) << row.name << ", " << row.other;
  }
}

TEST(Filename, MatchesExtensionsAndPatternsInItsOwnStyle) {
  struct Row {
    const char* name;
    const char* text;
    bool isExtension;
    bool isPattern;
  };
  const Row rows[] = {
      {"d\\a.txt", "TXT", true, false}, {"d\\a.txt", ".txt", true, false}, {"d\\a.txt", "tx", false, false},
      {"d\\a.txt", "", false, false},   {"/d/a.txt", "TXT", false, false}, {"/d/a.txt", "a*", false, true},
      {"/d/a.txt", "A*", false, false}, {"d\\a.txt", "A.T*", false, true}, {"d\\a", "d*", false, false},
      {"a", "", true, false},           {"a", ".", false, false},          {"", nullptr, true, true},
  };
  for (const Row& row : rows) {
    const VelClFilename name(row.name);
    EXPECT_EQ(row.isExtension, name.matchesExtension(row.text)) << row.name;
    EXPECT_EQ(row.isPattern, name.matchesWildcardPattern(row.text)) << row.name;
  }
}

TEST(Filename, RecognisesFat83Names) {
  struct Row {
    const char* text;
    bool isFat;
  };
  const Row rows[] = {
      {"ABCDEFGH.TXT", true},
      {"C:\\DOS\\ABC.EXE", true},
      {"ABCDEFGHI.TXT", false},
      {"A.HTML", false},
      {"C:\\TOOLONGDIR\\A.B", false},
      {"A;B.TXT", false},
      {"/usr/a", false},
      {"C:\\NINECHARS\\A.B", false},
      {"C:\\EIGHTCHR\\A.B", true},
      {"A B-_~?.TX", true},
      {"A.B\\C", false},
      {"A.B;C", true},
      {"1:\\A.B", false},
      {"", true},
      {"\\\\longserver\\s\\D\\A", true},
      {"A\\B/C", false},
  };
  for (const Row& row : rows) EXPECT_EQ(row.isFat, VelClFilename(row.text).isStyleFAT_8_3()) << row.text;
}

TEST(Filename, ChangesParts) {
  using Change = void (*)(VelClFilename&);
  struct Row {
    const char* before;
    Change change;
    const char* after;
    const char* name;
    const char* extension;
  };
  const Row rows[] = {
      {"d\\a.txt", [](VelClFilename& f) { f.setNewExtension("doc"); }, "d\\a.doc", "a.doc", ".doc"},
      {"d\\a.txt", [](VelClFilename& f) { f.setNewExtension(".doc"); }, "d\\a.doc", "a.doc", ".doc"},
      {"d\\a.txt", [](VelClFilename& f) { f.setNewExtension(""); }, "d\\a", "a", ""},
      {"d.d\\a", [](VelClFilename& f) { f.setNewExtension("x"); }, "d.d\\a.x", "a.x", ".x"},
      // All that was set is the extension, whatever dots it has.
      {"a", [](VelClFilename& f) { f.setNewExtension("tar.gz"); }, "a.tar.gz", "a.tar.gz", ".tar.gz"},
      {"d\\a.txt", [](VelClFilename& f) { f.setNewName("b"); }, "d\\b", "b", ""},
      {"/d/a.txt", [](VelClFilename& f) { f.setNewBaseName("b"); }, "/d/b.txt", "b.txt", ".txt"},
      {"d\\a", [](VelClFilename& f) { f.setNewBaseName("b"); }, "d\\b", "b", ""},
      {"\\\\s\\h", [](VelClFilename& f) { f.setNewName("b"); }, "\\\\s\\h\\b", "b", ""},
      {"d\\a.txt", [](VelClFilename& f) { f.setNewPath("/x"); }, "/x/a.txt", "a.txt", ".txt"},
      {"d\\a.txt", [](VelClFilename& f) { f.setNewPath(""); }, "a.txt", "a.txt", ".txt"},
      {"\\\\s\\h\\d\\a.txt", [](VelClFilename& f) { f.removePath(); }, "a.txt", "a.txt", ".txt"},
      {"a.txt", [](VelClFilename& f) { f.setNew("/d", "b.c"); }, "/d/b.c", "b.c", ".c"},
      {"a/b\\c/d.e", [](VelClFilename& f) { f.removePath(); }, "c/d.e", "c/d.e", ".e"},
      // Texts of the name itself.
      {"dir\\a.txt", [](VelClFilename& f) { f = f.getName(); }, "a.txt", "a.txt", ".txt"},
      {"dir\\a.txt", [](VelClFilename& f) { f.setNewName(f.getName()); }, "dir\\a.txt", "a.txt", ".txt"},
      {"dir\\a.txt", [](VelClFilename& f) { f.setNewBaseName(f.getName()); }, "dir\\a.txt.txt", "a.txt.txt",
       ".txt"},
      {"dir\\a.txt", [](VelClFilename& f) { f.setNewExtension(f.getAsCString()); }, "dir\\a.dir\\a.txt",
       "a.dir\\a.txt", ".dir\\a.txt"},
      {"dir\\a.txt", [](VelClFilename& f) { f.setNewExtension(f.getExtension()); }, "dir\\a.txt", "a.txt",
       ".txt"},
      {"dir\\a.txt", [](VelClFilename& f) { f.setNewPath(f.getName()); }, "a.txt\\a.txt", "a.txt", ".txt"},
      {"dir\\a.txt", [](VelClFilename& f) { f.setNew(f.getName(), f.getAsCString()); }, "a.txt\\dir\\a.txt",
       "a.txt", ".txt"},
  };
  for (const Row& row : rows) {
    VelClFilename name(row.before);
    row.change(name);
    VelClFilename copy;
    copy = name;  // copies keep the parts where they are
    for (const VelClFilename& shown : {name, copy}) {
      EXPECT_STREQ(row.after, shown.getAsCString()) << row.before;
      EXPECT_STREQ(row.name, shown.getName()) << row.before;
      EXPECT_STREQ(row.extension, shown.getExtension()) << row.before;
      EXPECT_EQ(std::string(row.after).size(), shown.getLength()) << row.before;
    }
  }
}

TEST(Filename, KeepsItsStyleWithoutPath) {
  VelClFilename name("/d/A");
  name.removePath();
  EXPECT_TRUE(name.isCaseSensitive());
  EXPECT_FALSE(name.hasPath());
}

// Around the limit nothing is written beyond it, and what fits stays.
TEST(Filename, IsCutAtTheLimit) {
  for (size_t length = kLimit - 6; length <= kLimit + 40; ++length) {
    const std::string text = "d\\" + std::string(length - 2, 'x');
    const std::string cut = text.substr(0, kLimit);
    VelClFilename name(text.c_str());
    EXPECT_EQ(cut, name.getAsCString());
    EXPECT_EQ(cut.size(), name.getLength());
    name.setNewExtension("txt");
    EXPECT_EQ((cut + ".txt").substr(0, kLimit), name.getAsCString());
    EXPECT_EQ((cut + ".txt").substr(cut.size(), kLimit - cut.size()), name.getExtension());
    name.setNew(text.c_str(), "name");
    EXPECT_EQ((cut + "\\name").substr(0, kLimit), name.getAsCString());
    EXPECT_EQ(name.getLength(), std::string(name.getAsCString()).size());
    const VelClFilename joined(VelClLocation("d", false), text.c_str() + 2, text.c_str());
    EXPECT_EQ((text + "." + text).substr(0, kLimit), joined.getAsCString());
  }
}

}  // namespace
