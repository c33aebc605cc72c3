// Splitting, joining, comparing and changing file names, up to the length limit and with texts that
// are part of the name itself.
#include <gtest/gtest.h>

#include <string>

#include "vel_include/vel_filesys.h"

namespace {

constexpr size_t kLimit = VEL_MAX_PATH_LENGTH;

// Server, directory, base name and extension.
std::string partsOf(const VelClFilename& name) {
  char server[kLimit + 1], path[kLimit + 1], base[kLimit + 1];
  name.extractServer(server);
  name.extractPath(path, true);
  name.extractBaseName(base);
  EXPECT_EQ(std::string(base) + name.getExtension(), name.getName());
  EXPECT_EQ(name.getLength(), std::string(name.getAsCString()).size());
  name.extractPath(path, false);
  return std::string(server) + "|" + path + "|" + base + "|" + name.getExtension();
}

TEST(Filename, SplitsIntoParts) {
  const struct {
    const char *text, *parts;
  } rows[] = {{"C:\\x", "|C:|x|"},       {"C:x.txt", "||C:x|.txt"},
              {"dir\\", "|dir||"},       {"/usr/.profile", "|/usr||.profile"},
              {"\\\\srv", "|\\|srv|"},   {"\\\\srv\\share", "\\\\srv\\share|||"},
              {"a/b\\c/d", "|a/b|c/d|"}, {"C:\\dir\\x.tar.gz", "|C:\\dir|x.tar|.gz"},
              {"dir.d\\x", "|dir.d|x|"}, {"\\\\srv\\s\\d\\x.c", "\\\\srv\\s|\\\\srv\\s\\d|x|.c"}};
  for (const auto& row : rows) EXPECT_EQ(row.parts, partsOf(row.text));
}

TEST(Filename, JoinsDirectoryNameAndExtension) {
  const struct {
    const char *path, *name, *extension, *joined;
  } rows[] = {{"C:\\a", "x", "txt", "C:\\a\\x.txt"}, {"/usr", "x", nullptr, "/usr/x"},
              {"usr", "x.a", "b", "usr\\x.a.b"},     {nullptr, nullptr, nullptr, ""},
              {"C:", "x", ".txt", "C:\\x.txt"},      {"", "x", "", "x."}};
  for (const auto& row : rows) {
    EXPECT_STREQ(row.joined,
                 VelClFilename(VelClLocation(row.path, false), row.name, row.extension).getAsCString());
  }
}

// Whether the other is equal (=), in this directory or deeper (d), and of the same base name (b), where
// the longer one decides how much is compared, extensions included.
TEST(Filename, ComparesInItsOwnStyle) {
  const struct {
    const char *name, *other, *result;
  } rows[] = {{"ab.txt", "a.txt", "d"},     {"\xE4", "\xC4", "d"},  {"C:\\D\\A", "c:\\d\\deeper\\b", "d"},
              {"C:\\D\\A", "c:\\A.x", "b"}, {"a.b", "a.b.c", "db"}, {"C:\\D\\A.txt", "c:\\d\\a.TXT", "=db"},
              {"/D/A.txt", "/d/a.txt", ""}, {"C:\\D\\A", "C:", ""}, {"C:\\D\\A.txt", "c:\\d\\a.tx", "db"},
              {"a.txt", "ab.txt", "d"}};
  for (const auto& row : rows) {
    const VelClFilename name(row.name), other(row.other);
    EXPECT_EQ(row.result, std::string(name == other ? "=" : "") + (name.matchesPath(other) ? "d" : "") +
                              (name.matchesBase(other) ? "b" : ""))
        << row.name << ", " << row.other;
  }
}

TEST(Filename, MatchesExtensionsAndPatterns) {
  const struct {
    const char *name, *text;
    bool isExtension, isPattern;
  } rows[] = {
      {"d\\a.txt", ".txt", true, false}, {"/d/a.txt", "A*", false, false},  {"/d/a.txt", "TXT", false, false},
      {"d\\a.txt", "", false, false},    {"d\\a.txt", "A.T*", false, true}, {"d\\a", "d*", false, false},
      {"d\\a.txt", "TXT", true, false},  {"a", nullptr, true, false},       {"d\\a.txt", "tx", false, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.isExtension, VelClFilename(row.name).matchesExtension(row.text)) << row.name;
    EXPECT_EQ(row.isPattern, VelClFilename(row.name).matchesWildcardPattern(row.text)) << row.name;
  }
}

TEST(Filename, RecognisesFat83Names) {
  for (const char* name : {"ABCDEFGH.TXT", "C:\\DOS\\ABC.EXE", "C:\\EIGHTCHR\\A.B", "A B-_~?.TX", "A.B;C", "",
                           "\\\\longserver\\s\\D\\A"})
    EXPECT_TRUE(VelClFilename(name).isStyleFAT_8_3()) << name;
  for (const char* name :
       {"ABCDEFGHI.TXT", "A.HTML", "C:\\NINECHARS\\A.B", "A;B.TXT", "/usr/a", "A.B\\C", "1:\\A.B", "A\\B/C"})
    EXPECT_FALSE(VelClFilename(name).isStyleFAT_8_3()) << name;
}

// All that was set is the extension, whatever dots it has. Texts may be those of the name itself.
TEST(Filename, ChangesParts) {
  using Name = VelClFilename;
  const struct {
    const char* before;
    void (*change)(Name&);
    const char* parts;
  } rows[] = {{"d\\a.txt", [](Name& f) { f.setNewExtension("doc"); }, "|d|a|.doc"},
              {"d\\a.txt", [](Name& f) { f.setNewExtension(nullptr); }, "|d|a|"},
              {"d.d\\a", [](Name& f) { f.setNewExtension(".x"); }, "|d.d|a|.x"},
              {"a.txt", [](Name& f) { f.setNewExtension("tar.gz"); }, "||a|.tar.gz"},
              {"d\\a.txt", [](Name& f) { f.setNewName("b"); }, "|d|b|"},
              {"/d/a.txt", [](Name& f) { f.setNewBaseName("b"); }, "|/d|b|.txt"},
              {"d\\a", [](Name& f) { f.setNewBaseName("b"); }, "|d|b|"},
              {"\\\\s\\h", [](Name& f) { f.setNewName("b"); }, "\\\\s\\h|\\\\s\\h|b|"},
              {"d\\a.txt", [](Name& f) { f.setNewPath("/x"); }, "|/x|a|.txt"},
              {"d\\a.txt", [](Name& f) { f.setNewPath(VelClLocation("", false)); }, "||a|.txt"},
              {"a/b\\c/d.e", [](Name& f) { f.removePath(); }, "||c/d|.e"},
              {"\\\\s\\h\\d\\a.txt", [](Name& f) { f.removePath(); }, "||a|.txt"},
              {"dir\\a.txt", [](Name& f) { f = f.getName(); }, "||a|.txt"},
              {"dir\\a.txt", [](Name& f) { f.setNewName(f.getName()); }, "|dir|a|.txt"},
              {"dir\\a.txt", [](Name& f) { f.setNewBaseName(f.getName()); }, "|dir|a.txt|.txt"},
              {"d\\a.txt", [](Name& f) { f.setNewExtension(f.getName()); }, "|d|a|.a.txt"},
              {"dir\\a.txt", [](Name& f) { f.setNewPath(f.getName()); }, "|a.txt|a|.txt"},
              {"dir\\a.txt", [](Name& f) { f.setNew(f.getName(), f.getAsCString()); }, "|a.txt\\dir|a|.txt"}};
  for (const auto& row : rows) {
    Name name(row.before);
    row.change(name);
    const Name copy = name;  // keeps the parts where they are
    EXPECT_EQ(row.parts, partsOf(name)) << row.before;
    EXPECT_EQ(row.parts, partsOf(copy)) << row.before;
  }
  // Without its path the name keeps its style.
  Name name("/d/A");
  name.removePath();
  EXPECT_FALSE(name.hasPath() || name == Name("a"));
}

// Around the limit nothing is written beyond it, and what fits stays.
TEST(Filename, IsCutAtTheLimit) {
  for (size_t length = kLimit - 6; length <= kLimit + 40; ++length) {
    std::string text = "d\\" + std::string(length - 2, 'x');
    const std::string cut = text.substr(0, kLimit);
    VelClFilename name(text.c_str());
    EXPECT_EQ(cut, name.getAsCString());
    name.setNewExtension("txt");
    EXPECT_EQ((cut + ".txt").substr(0, kLimit), name.getAsCString());
    EXPECT_EQ((cut + ".txt").substr(cut.size(), kLimit - cut.size()), name.getExtension());
    name.setNew(text.c_str(), "name");
    EXPECT_EQ((cut + "\\name").substr(0, kLimit), name.getAsCString());
    const VelClFilename joined(VelClLocation("d", false), text.c_str() + 2, text.c_str());
    EXPECT_EQ(text.append(".").append(text).substr(0, kLimit), joined.getAsCString());
  }
}

}  // namespace
