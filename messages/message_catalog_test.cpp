// Catalogs: where their libraries are found, which language they speak, and what they hold. The tests run
// once for an English and once for a German user; LC_ALL tells which.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "vel_include/vel_messages.h"
#include "vel_include/vel_process.h"

namespace {

constexpr unsigned int kEnglish = 1033;
constexpr unsigned int kGerman = 1031;

std::string userLocale() {
  const char* name = std::getenv("LC_ALL");
  return name != nullptr ? name : "";
}

bool userIsGerman() {
  return userLocale().starts_with("de");
}

std::string processLocale() {
  const char* name = std::setlocale(LC_ALL, nullptr);
  return name != nullptr ? name : "";
}

std::string textOf(const VelClMessageCatalog& catalog, unsigned long id) {
  return VelClMessage(catalog, id, "1").getAsCString();
}

/// The German catalog under another language's number, below 0x10000. The message compiler makes no catalog
/// without a language.
void writeCatalogOf(unsigned int language, const std::string& path) {
  const auto bin = std::filesystem::path(vel::test::ownProgram()).parent_path();
  std::string bytes = vel::test::readFile((bin / "german_catalog.DLL").string());
  const std::string number("\x07\x04\0\0", 4);
  const std::size_t at = bytes.find(number);
  ASSERT_NE(at, std::string::npos);
  ASSERT_EQ(bytes.find(number, at + 1), std::string::npos);
  bytes[at] = static_cast<char>(language & 0xFF);
  bytes[at + 1] = static_cast<char>(language >> 8);
  std::ofstream(path, std::ios::binary) << bytes;
}

TEST(MessageCatalog, ReplacesTheExtension) {
  for (const char* name : {"small_catalog", "small_catalog.txt", "small_catalog.DLL", "small_catalog.dll"}) {
    const VelClMessageCatalog catalog{VelClFilename(name)};
    EXPECT_TRUE(catalog.isValid()) << name;
    EXPECT_STREQ(catalog.getAsCString(), "small_catalog.DLL");
    EXPECT_FALSE(catalog.hasDefaultVelCatalog());
  }
  EXPECT_STREQ(VelClMessageCatalog(VelClFilename("no.such.catalog")).getAsCString(), "no.such.DLL");
}

TEST(MessageCatalog, LoadsFromADirectory) {
  const vel::test::ScratchDirectory directory;
  const auto bin = std::filesystem::path(vel::test::ownProgram()).parent_path();
  std::filesystem::copy_file(bin / "small_catalog.DLL", directory.path("moved.DLL"));
  directory.write("garbage.DLL", std::string(1000, 'x'));
  directory.write("empty.DLL", "");
  std::filesystem::create_directory(directory.path("folder.DLL"));
  EXPECT_EQ(textOf(VelClMessageCatalog(VelClFilename(directory.path("moved.x").c_str())), 1), "[SMALL]");
  for (const char* name : {"garbage", "empty", "folder", "small_catalog"}) {
    const VelClMessageCatalog catalog(VelClFilename(directory.path(name).c_str()));
    EXPECT_FALSE(catalog.isValid()) << name;
    EXPECT_EQ(textOf(catalog, 1), "UNABLE TO LOAD MESSAGE CATALOG: " + directory.path(name) + ".DLL");
  }
}

TEST(MessageCatalog, ChoosesItsLanguage) {
  const unsigned int user = userIsGerman() ? kGerman : kEnglish;
  constexpr unsigned int kNeutral = 0;
  constexpr unsigned int kFrench = 1036;
  struct Row {
    unsigned int only;  ///< the catalog's language
    unsigned int chosen;
    bool speaks;
  };
  const Row rows[] = {
      {kGerman, user, userIsGerman()},
      {kEnglish, kEnglish, true},
      {kFrench, kEnglish, false},
      {kNeutral, user, true},
  };
  for (const Row& row : rows) {
    const vel::test::ScratchDirectory directory;
    const std::string path = directory.path("one.DLL");
    writeCatalogOf(row.only, path);
    const VelClMessageCatalog catalog(VelClFilename(path.c_str()));
    EXPECT_TRUE(catalog.isValid());
    EXPECT_EQ(catalog.getLanguage(), row.chosen) << row.only;
    EXPECT_EQ(textOf(catalog, 2), row.speaks ? "nur 1" : "UNABLE TO LOAD MESSAGE #2 FROM CATALOG: " + path);
  }
  for (const char* name : {"small_catalog", "small_ansi_catalog"}) {
    const VelClMessageCatalog catalog{VelClFilename(name)};
    EXPECT_EQ(catalog.getLanguage(), user);
    EXPECT_EQ(textOf(catalog, 5), userIsGerman() ? "zwei\r\nZeilen" : "two\r\nlines");
  }
}

TEST(MessageCatalog, KnowsTheLibrarysOwn) {
  const VelClMessageCatalog catalog;
  EXPECT_TRUE(catalog.isValid());
  EXPECT_TRUE(catalog.hasDefaultVelCatalog());
  EXPECT_FALSE(catalog.hasValidStringTable());
  EXPECT_STREQ(catalog.getAsCString(), "qammsg50.DLL");
  EXPECT_EQ(textOf(catalog, 17), userIsGerman() ? "Aufruf" : "Usage");
  EXPECT_EQ(textOf(catalog, 220), "[VEL-LIBRARY]");
  EXPECT_EQ(textOf(catalog, 221), "UNABLE TO LOAD MESSAGE #221 FROM CATALOG: qammsg50.DLL");
}

TEST(MessageCatalog, AsksItsStringTableWithoutALibrary) {
  unsigned long size = 0;
  const char* const* table = velMsgCatGetBuiltInTable(&size);
  VelClMessageCatalog catalog(VelClFilename("absent"));
  EXPECT_FALSE(catalog.hasValidStringTable());
  catalog.useStringTable(table, size);
  EXPECT_TRUE(catalog.hasValidStringTable());
  EXPECT_FALSE(catalog.isValid());
  EXPECT_EQ(catalog.getLanguage(), 0U);
  EXPECT_EQ(textOf(catalog, 23), "Unknown command line argument");
  EXPECT_EQ(textOf(catalog, 220), "[VEL-LIBRARY]");
  EXPECT_EQ(textOf(catalog, 221), "UNABLE TO LOAD MESSAGE CATALOG: absent.DLL");
  catalog.useStringTable(table, 23);
  EXPECT_EQ(textOf(catalog, 22), "Sorry, no additional help available");
  EXPECT_EQ(textOf(catalog, 23), "UNABLE TO LOAD MESSAGE CATALOG: absent.DLL");
  // A library wins, also for what only the table has.
  VelClMessageCatalog library(VelClFilename("small_catalog"));
  library.useStringTable(table, size);
  EXPECT_EQ(textOf(library, 1), "[SMALL]");
  EXPECT_EQ(textOf(library, 23), "UNABLE TO LOAD MESSAGE #23 FROM CATALOG: small_catalog.DLL");
  library.useStringTable(nullptr, 5);
  EXPECT_FALSE(library.hasValidStringTable());
}

TEST(MessageCatalog, BelievesTheSizeAndNotTheSignature) {
  for (const std::string signature : {"", "[VEL_MSGTAB", "[VEL_MSGTAB_SIGNATURE]", "[VEL_MSGTAB_SIGNATURE] 1",
                                      "[VEL_MSGTAB_SIGNATURE] 99999999999", "no signature, but as long"}) {
    // Exactly as large as the text, so that a sanitizer sees one byte too many.
    const auto exact = std::make_unique<char[]>(signature.size() + 1);
    signature.copy(exact.get(), signature.size());
    const char* const table[] = {exact.get(), "name", "text"};
    const VelClMessageCatalog catalog(table, 3);
    EXPECT_EQ(textOf(catalog, 2), "text") << signature;
    EXPECT_EQ(textOf(catalog, 3), "UNABLE TO LOAD MESSAGE CATALOG: ") << signature;
  }
}

TEST(MessageCatalog, OpeningSetsTheLocale) {
  const std::string before = processLocale();
  const std::string variable = userLocale();
  VelClEnvironmentVariable("LC_ALL", "C.UTF-8");
  std::setlocale(LC_ALL, "");
  const std::string user = processLocale();
  ASSERT_NE(user, "C");
  std::setlocale(LC_ALL, "C");
  const char* const table[] = {"", "name"};
  const VelClMessageCatalog withoutLibrary(table, 2);
  EXPECT_EQ(processLocale(), "C");
  const VelClMessageCatalog absent(VelClFilename("absent"));
  EXPECT_EQ(processLocale(), user);
  VelClEnvironmentVariable("LC_ALL", variable.c_str());
  std::setlocale(LC_ALL, before.c_str());
}

struct Listed {
  unsigned long id;
  unsigned int language;
  std::string text;

  bool operator==(const Listed&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Listed& listed) {
  return stream << listed.id << '/' << listed.language << '/' << listed.text;
}

std::vector<Listed> listOf(const VelClMessageCatalog& catalog) {
  VelClMessageCatalogCursor cursor(catalog);
  EXPECT_FALSE(cursor.isValid());
  std::vector<Listed> list;
  for (int walk = 0; walk < 2; ++walk) {  // the second one from the first message again
    list.clear();
    for (bool more = cursor.setToFirst(); more; more = cursor.setToNext())
      list.push_back({cursor.getId(), cursor.getLanguage(), cursor.getAsCString()});
    EXPECT_FALSE(cursor.isValid() || cursor.setToNext());
    EXPECT_EQ(cursor.getId(), 0U);
    EXPECT_EQ(cursor.getLanguage(), 0U);
    EXPECT_STREQ(cursor.getAsCString(), "");
  }
  return list;
}

TEST(MessageCatalogCursor, ListsLibrariesAndTables) {
  const auto small = [](const char* greeting) {
    return std::vector<Listed>{
        {1, kGerman, "[SMALL]%0"},    {1, kEnglish, "[SMALL]%0"},   {2, kGerman, greeting},
        {2, kEnglish, "Hello, %1%0"}, {5, kGerman, "zwei\nZeilen"}, {5, kEnglish, "two\nlines"},
    };
  };
  VelClMessageCatalog library(VelClFilename("small_catalog"));
  EXPECT_EQ(listOf(library), small("Gr\xC3\xBC\xC3\x9F"
                                   "e, %1%0"));
  EXPECT_EQ(listOf(VelClMessageCatalog(VelClFilename("small_ansi_catalog"))), small("Gr\xFC\xDF"
                                                                                    "e, %1%0"));
  const char* const table[] = {"signature", "name", "%1", nullptr, "last"};
  const std::vector<Listed> listed = {{1, 0, "name"}, {2, 0, "%1"}, {3, 0, ""}, {4, 0, "last"}};
  EXPECT_EQ(listOf(VelClMessageCatalog(table, 5)), listed);
  library.useStringTable(table, 5);
  EXPECT_EQ(listOf(library).size(), 6U);
  EXPECT_TRUE(listOf(VelClMessageCatalog(table, 1)).empty());
  EXPECT_TRUE(listOf(VelClMessageCatalog(VelClFilename("absent"))).empty());
}

}  // namespace
