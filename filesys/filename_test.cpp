// Tests splitting, comparing and changing file names, also with texts that are part of the name itself.
// fuzz/path_fuzz.cpp tests joining names and cutting them at the limit.
#include "platform/test/test.h"
#include "vel_include/vel_filesys.h"

namespace {

using vel::test::readTable;
using Name = VelClFilename;

/// Returns "server|directory|base name|extension".
std::string partsOf(const Name& name) {
  char server[VEL_MAX_PATH_LENGTH + 1], path[VEL_MAX_PATH_LENGTH + 1], base[VEL_MAX_PATH_LENGTH + 1];
  name.extractServer(server);
  name.extractPath(path, true);
  name.extractBaseName(base);
  EXPECT_EQ(std::string(base) + name.getExtension(), name.getName());
  EXPECT_EQ(name.getLength(), std::string(name.getAsCString()).size());
  name.extractPath(path, false);
  return std::string(server) + "|" + path + "|" + base + "|" + name.getExtension();
}

TEST(Filename, IsSplitIntoItsParts) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/filename_parts.tsv"))
    EXPECT_EQ(row.at(1), partsOf(row[0].c_str()));
}

// The result has "=" if the other name is equal, "d" if it is in this directory or deeper, and "b" if it has
// the same base name. Intentional: the longer base name decides how much is compared, extensions included.
TEST(Filename, IsComparedByTheRulesOfItsStyle) {
  const auto compared = [](const Name& name, const Name& other) {
    return std::string(name == other ? "=" : "") + (name.matchesPath(other) ? "d" : "") +
           (name.matchesBase(other) ? "b" : "");
  };
  for (const auto& row : readTable(VEL_TEST_DATA "test/filename_compared.tsv"))
    EXPECT_EQ(row.at(2), compared(row[0].c_str(), row[1].c_str())) << row[0] << ", " << row[1];
  EXPECT_EQ("d", compared("\xE4", "\xC4"));
}

TEST(Filename, MatchesExtensionsAndPatterns) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/filename_matches.tsv")) {
    const Name name(row[0].c_str());
    EXPECT_EQ(row.at(2) == "extension", name.matchesExtension(row[1].c_str())) << row[0];
    EXPECT_EQ(row[2] == "pattern", name.matchesWildcardPattern(row[1].c_str())) << row[0];
  }
  EXPECT_TRUE(Name("a").matchesExtension(nullptr));
  EXPECT_FALSE(Name("a").matchesWildcardPattern(nullptr));
}

TEST(Filename, RecognisesFat83Names) {
  for (const auto& row : readTable(VEL_TEST_DATA "test/filename_fat.tsv"))
    EXPECT_EQ(row[0] == "8.3", Name(row.at(1).c_str()).isStyleFAT_8_3()) << row[1];
}

// A new extension may contain dots.
TEST(Filename, HasPartsThatCanBeChanged) {
  const std::map<std::string, void (*)(Name&, const char*)> changes = {
      {"all", [](Name& f, const char* text) { f = text; }},
      {"path and name", [](Name& f, const char* text) { f.setNew(text, f.getAsCString()); }},
      {"path", [](Name& f, const char* text) { f.setNewPath(text); }},
      {"no path", [](Name& f, const char*) { f.removePath(); }},
      {"name", [](Name& f, const char* text) { f.setNewName(text); }},
      {"base name", [](Name& f, const char* text) { f.setNewBaseName(text); }},
      {"extension", [](Name& f, const char* text) { f.setNewExtension(text); }}};
  for (const auto& row : readTable(VEL_TEST_DATA "test/filename_changes.tsv")) {
    Name name(row[0].c_str());
    changes.at(row[1])(name, row[2] == "(name)" ? name.getName() : row[2].c_str());
    const Name copy = name;  // keeps the parts where they are
    for (const Name& changed : {name, copy}) EXPECT_EQ(row.at(3), partsOf(changed)) << row[0];
  }
  // A name keeps its style when its path is removed.
  Name name("/d/A");
  name.removePath();
  EXPECT_FALSE(name.hasPath());
  EXPECT_FALSE(name == Name("a"));
  name.setNewExtension(nullptr);
  EXPECT_EQ("||A|", partsOf(name));
  EXPECT_STREQ("/usr/x", Name(VelClLocation("/usr", false), "x", nullptr).getAsCString());
  EXPECT_STREQ("", Name(VelClLocation(nullptr, false), nullptr, nullptr).getAsCString());
}

}  // namespace
