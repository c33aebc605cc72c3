// Tests where the libraries of catalogs are found, the choice of language, and the listing of messages. The
// tests run for an English, a German and an Austrian user; LC_ALL tells which.
#include <clocale>

#include "messages/test/catalog_builder.h"
#include "platform/test/test.h"
#include "platform/test/watched_memory.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_messages.h"
#include "vel_include/vel_process.h"

namespace {

constexpr unsigned int kEnglish = 1033, kGerman = 1031, kAustrian = 3079;

bool userIs(const char* language) {
  return std::string(VelClEnvironmentVariableQueryOnly("LC_ALL").getValue()).starts_with(language);
}

bool userIsGerman() {
  return userIs("de_DE");
}

std::string textOf(const VelClMessageCatalog& catalog, unsigned long id) {
  return VelClMessage(catalog, id, "1").getAsCString();
}

VelClMessageCatalog open(const std::string& name) {
  return VelClMessageCatalog(VelClFilename(name.c_str()));
}

/// A directory that contains a small catalog.
class MessageCatalogFile : public testing::Test {
 protected:
  vel::test::ScratchDirectory directory_;
  const std::string path_ = directory_.write("own.DLL", vel::test::readFile("small_catalog.DLL"));
};

TEST(MessageCatalog, ReplacesTheExtension) {
  for (const char* name : {"small_catalog", "small_catalog.txt", "small_catalog.DLL", "small_catalog.dll"}) {
    const VelClMessageCatalog catalog = open(name);
    EXPECT_TRUE(catalog.isValid()) << name;
    EXPECT_STREQ(catalog.getAsCString(), "small_catalog.DLL");
    EXPECT_FALSE(catalog.hasDefaultVelCatalog());
  }
  EXPECT_STREQ(open("no.such.catalog").getAsCString(), "no.such.DLL");
}

TEST_F(MessageCatalogFile, IsLoadedFromADirectory) {
  directory_.write("garbage.DLL", std::string(1000, 'x'));
  directory_.write("empty.DLL", "");
  std::filesystem::create_directory(directory_.path("folder.DLL"));
  EXPECT_EQ(textOf(open(directory_.path("own.x")), 1), "[SMALL]");
  for (const std::string name : {"garbage", "empty", "folder", "small_catalog"}) {
    const VelClMessageCatalog catalog = open(directory_.path(name));
    EXPECT_FALSE(catalog.isValid()) << name;
    EXPECT_EQ(textOf(catalog, 1), "UNABLE TO LOAD MESSAGE CATALOG: " + directory_.path(name) + ".DLL");
  }
}

TEST_F(MessageCatalogFile, IsOpenedAsNamedOrAsALibrary) {
  using File = VelClMessageCatalog::VelEnFile;
  for (const char* const name : {"own.dll", "own.exe", "own.DLL.mui", "own"}) {
    const std::string path = directory_.write(std::string("named_") + name, vel::test::readFile(path_));
    const VelClMessageCatalog catalog(VelClFilename(path.c_str()), File::AS_NAMED);
    EXPECT_EQ(textOf(catalog, 1), "[SMALL]") << name;
    EXPECT_EQ(catalog.getAsCString(), path);
  }
  // The extension is set in upper case; files may have it in lower case.
  EXPECT_EQ(textOf(open(directory_.path("named_own.dll")), 1), "[SMALL]");
  EXPECT_FALSE(
      VelClMessageCatalog(VelClFilename(directory_.path("own.x").c_str()), File::AS_NAMED).isValid());
  EXPECT_TRUE(VelClMessageCatalog(VelClFilename(directory_.path("own.x").c_str()), File::LIBRARY).isValid());
}

TEST_F(MessageCatalogFile, MayBeALibraryThatTheProcessUsesAlready) {
  const VelClMessageCatalog first = open(path_);
  // Only Windows can load it as a library.
  const VelClDllFile used{VelClFilename(path_.c_str())};
  EXPECT_EQ(used.isValid(), velGetOperatingSystemId() != 0);
  EXPECT_EQ(textOf(first, 1), "[SMALL]");
  EXPECT_EQ(textOf(open(path_), 1), "[SMALL]");
}

TEST_F(MessageCatalogFile, IsNotNeededOnceItIsOpen) {
  const VelClMessageCatalog catalog = open(path_);
  std::filesystem::resize_file(path_, 0);
  EXPECT_EQ(textOf(catalog, 1), "[SMALL]");
  std::filesystem::remove(path_);
  EXPECT_FALSE(open(path_).isValid());
  EXPECT_EQ(textOf(catalog, 5), userIsGerman() ? "zwei\r\nZeilen" : "two\r\nlines");
}

TEST_F(MessageCatalogFile, IsRefusedAbove64Megabytes) {
  for (const std::uintmax_t size : {std::uintmax_t{64} << 20, (std::uintmax_t{64} << 20) + 1}) {
    std::filesystem::resize_file(path_, size);
    EXPECT_EQ(open(path_).isValid(), size == 64U << 20);
  }
}

TEST(MessageCatalog, ChoosesTheUsersLanguageElseEnglish) {
  const unsigned int user = userIs("de_AT") ? kAustrian : userIsGerman() ? kGerman : kEnglish;
  constexpr unsigned int kNeutral = 0, kFrench = 1036;
  const struct {
    unsigned int only, chosen;
    bool hasText, hasFallback;
  } rows[] = {{kGerman, user == kGerman ? user : kEnglish, user == kGerman, user == kAustrian},
              {kAustrian, user == kAustrian ? user : kEnglish, user == kAustrian, false},
              {kEnglish, kEnglish, true, false},
              {kFrench, kEnglish, false, false},
              {kNeutral, user, true, false}};
  for (const auto& [only, chosen, hasText, hasFallback] : rows) {
    const auto bytes =
        vel::test::libraryFile({{1, {{only, vel::test::messageTable({{1, "[ONE]%0"}, {2, "only %1%0"}})}}}});
    const vel::test::ScratchDirectory directory;
    const std::string path = directory.write("one.DLL", {bytes.begin(), bytes.end()});
    const std::string missing = "UNABLE TO LOAD MESSAGE #2 FROM CATALOG: " + path;
    VelClMessageCatalog catalog = open(path);
    EXPECT_TRUE(catalog.isValid());
    EXPECT_EQ(catalog.getLanguage(), chosen) << only;
    EXPECT_EQ(textOf(catalog, 2), hasText ? "only 1" : missing);
    EXPECT_EQ(catalog.useLanguageFallback(), hasFallback);
    EXPECT_EQ(catalog.getLanguage(), hasFallback ? only : chosen);
    EXPECT_EQ(textOf(catalog, 2), hasText || hasFallback ? "only 1" : missing);
  }
  for (const char* name : {"small_catalog", "small_ansi_catalog"}) {
    VelClMessageCatalog catalog = open(name);
    EXPECT_EQ(catalog.getLanguage(), user == kGerman ? kGerman : kEnglish);
    EXPECT_EQ(catalog.useLanguageFallback(), user == kAustrian);
    EXPECT_EQ(textOf(catalog, 5), user != kEnglish ? "zwei\r\nZeilen" : "two\r\nlines");
  }
}

TEST(MessageCatalog, TheLibrarysOwnReadsLikeTheBuiltInTable) {
  const char* const variables[10] = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"};
  unsigned long size = 0;
  const char* const* const builtIn = velMsgCatGetBuiltInTable(&size);
  const VelClMessageCatalog library, table(builtIn, size);
  EXPECT_TRUE(library.isValid());
  EXPECT_TRUE(library.hasDefaultVelCatalog());
  EXPECT_FALSE(library.hasValidStringTable());
  EXPECT_EQ(textOf(library, 17), userIsGerman() ? "Aufruf" : "Usage");
  EXPECT_EQ(textOf(library, size),
            "UNABLE TO LOAD MESSAGE #" + std::to_string(size) + " FROM CATALOG: qammsg50.DLL");
  for (unsigned long id = 1; id < size; ++id) {
    const bool isName = id <= 2 || (id >= 8 && id <= 10) || (id >= 47 && id <= 149) || id == 151 ||
                        (id >= 153 && id <= 172) || id >= 200;
    if (userIsGerman() && !isName) continue;
    // Line breaks are CR LF in texts of libraries, LF in texts of tables.
    EXPECT_EQ(VelClMessage(library, id, variables).getAsCString(),
              vel::test::replaced(VelClMessage(table, id, variables).getAsCString(), "\n", "\r\n"))
        << id;
  }
}

// A copy of this program runs the test, because its directory contains neither the library nor a catalog.
TEST(MessageCatalog, TheLibrarysOwnIsNotTheOneInTheCurrentDirectory) {
  namespace fs = std::filesystem;
  const fs::path program = vel::test::ownProgram();
  const vel::test::ScratchDirectory directory;
  const std::string copy = directory.path(program.filename().string());
  fs::copy_file(program, copy);
  directory.write("here/qammsg50.DLL", vel::test::readFile("small_catalog.DLL"));
  const vel::test::CurrentDirectory here(directory.path("here"));
  const auto child =
      vel::test::runChild(copy, {"--gtest_filter=MessageCatalog.TheLibrarysOwnReadsLikeTheBuiltInTable"},
                          {.environment = {{"PATH", program.parent_path().string()}}});
  EXPECT_EQ(child.exitCode, 0) << child.output << child.errors;
  EXPECT_NE(child.output.find("[  PASSED  ] 1 test."), std::string::npos) << child.output;
}

TEST(MessageCatalog, UsesItsStringTableOnlyWithoutALibrary) {
  // Intentional: the number in the first text does not matter.
  const char* const table[] = {"[VEL_MSGTAB_SIGNATURE] 1", "name", "text", "third"};
  VelClMessageCatalog catalog = open("absent"), library = open("small_catalog");
  EXPECT_FALSE(catalog.hasValidStringTable());
  catalog.useStringTable(table, 3);
  EXPECT_TRUE(catalog.hasValidStringTable());
  EXPECT_FALSE(catalog.isValid());
  EXPECT_EQ(catalog.getLanguage(), 0U);
  EXPECT_EQ(textOf(catalog, 2), "text");
  catalog.useStringTable(table, 2);
  EXPECT_EQ(textOf(catalog, 2), "UNABLE TO LOAD MESSAGE CATALOG: absent.DLL");
  // A library takes precedence, even for messages that only the table has.
  library.useStringTable(table, 4);
  EXPECT_EQ(textOf(library, 3), "UNABLE TO LOAD MESSAGE #3 FROM CATALOG: small_catalog.DLL");
  library.useStringTable(nullptr, 5);
  EXPECT_FALSE(library.hasValidStringTable());
  unsigned long size = 0;
  const char* const* builtIn = velMsgCatGetBuiltInTable(&size);
  EXPECT_EQ(velMsgCatGetBuiltInTable(nullptr), builtIn);
  // Programs know the messages by their ids, so the number of messages is part of the interface.
  EXPECT_EQ(size, 221U);
  EXPECT_EQ(textOf(VelClMessageCatalog(builtIn, size), size), "UNABLE TO LOAD MESSAGE CATALOG: ");
}

TEST(MessageCatalog, OpeningSetsTheLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  const vel::test::Variable variable("LC_ALL", "C.UTF-8");
  std::setlocale(LC_ALL, "");
  const std::string user = std::setlocale(LC_ALL, nullptr);
  ASSERT_NE(user, "C");
  std::setlocale(LC_ALL, "C");
  const char* const table[] = {"", "name"};
  const VelClMessageCatalog withoutLibrary(table, 2);
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  const VelClMessageCatalog absent = open("absent");
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), user);
  std::setlocale(LC_ALL, before.c_str());
}

/// Lists all texts as "id/language:text|", in two walks with the same cursor.
std::string listOf(const VelClMessageCatalog& catalog) {
  VelClMessageCatalogCursor cursor(catalog);
  EXPECT_FALSE(cursor.isValid());
  std::string lists[2];
  for (std::string& list : lists) {
    for (bool more = cursor.setToFirst(); more; more = cursor.setToNext())
      list += std::to_string(cursor.getId()) + '/' + std::to_string(cursor.getLanguage()) + ':' +
              cursor.getAsCString() + '|';
    EXPECT_FALSE(cursor.isValid());
    EXPECT_FALSE(cursor.setToNext());
    EXPECT_EQ(cursor.getId() + cursor.getLanguage(), 0U);
    EXPECT_STREQ(cursor.getAsCString(), "");
  }
  EXPECT_EQ(lists[0], lists[1]);
  return lists[0];
}

TEST(MessageCatalogCursor, ListsEveryMessageOfALibraryOrATable) {
  const auto small = [](const std::string& greeting) {
    return "1/1031:[SMALL]%0|1/1033:[SMALL]%0|2/1031:" + greeting +
           ", %1%0|2/1033:Hello, %1%0|5/1031:zwei\r\nZeilen%0|5/1033:two\r\nlines%0|";
  };
  VelClMessageCatalog library = open("small_catalog");
  EXPECT_EQ(listOf(library), small("Gr\u00FC\u00DFe"));
  EXPECT_EQ(listOf(open("small_ansi_catalog")), small("Gr\xFC\xDF"
                                                      "e"));
  const char* const table[] = {"signature", "name", "%1", nullptr, "last"};
  EXPECT_EQ(listOf(VelClMessageCatalog(table, 5)), "1/0:name|2/0:%1|3/0:|4/0:last|");
  library.useStringTable(table, 5);
  EXPECT_EQ(listOf(library), small("Gr\u00FC\u00DFe"));
  EXPECT_EQ(listOf(VelClMessageCatalog(table, 1)), "");
  EXPECT_EQ(listOf(open("absent")), "");
}

/// Lists a library that the message compiler would not write. `text` replaces the "????".
std::string listOf(const vel::test::TestTables& tables, std::u16string_view text = u"") {
  const vel::test::ScratchDirectory directory;
  const vel::test::Bytes bytes = vel::test::libraryFile(tables);
  std::string file(bytes.begin(), bytes.end());
  const std::size_t at = file.find(std::string("?\0?", 3));
  for (std::size_t i = 0; i < 2 * text.size(); ++i)
    file.at(at + i) = static_cast<char>(text[i / 2] >> (i % 2 == 0 ? 0 : 8));
  const std::string path = directory.write("made.DLL", file);
  const VelClMessageCatalog catalog = open(path);
  EXPECT_EQ(textOf(catalog, 4), "UNABLE TO LOAD MESSAGE #4 FROM CATALOG: " + path);
  return listOf(catalog);
}

TEST(MessageCatalogCursor, ConvertsTextsToUtf8) {
  using vel::test::messageTable;
  const vel::test::Bytes unicode = messageTable({{1, "????????", true}, {4, ""}});
  EXPECT_EQ(
      listOf({{1, {{0, unicode}}}, {2, {{0, unicode}}}}, u"\u00FC\u20AC\xD83D\xDE00\xDC00\xD800x\xD800"),
      "1/0:\u00FC\u20AC\U0001F600\uFFFD\uFFFDx\uFFFD|4/0:|");
  EXPECT_EQ(listOf({{2, {{0, unicode}}}}), "");
}

TEST(MessageCatalogCursor, BoundsTheListOfSharedTablesByTheSizeOfTheFile) {
  for (const auto& [messages, languages] : {std::pair{100U, 60U}, {20000U, 1000U}}) {
    vel::test::Bytes table;
    table.add32(1).add32(1).add32(messages).add32(16);
    for (std::uint32_t i = 0; i < messages; ++i) table.add32(4);  // an entry without text
    const auto bytes = vel::test::libraryOfSharedBranches(table, 1, languages);
    const vel::test::ScratchDirectory directory;
    const VelClMessageCatalog catalog = open(directory.write("shared.DLL", {bytes.begin(), bytes.end()}));
    ASSERT_TRUE(catalog.isValid());
    const vel::test::WatchedMemory memory;
    VelClMessageCatalogCursor cursor(catalog);
    // 24 bytes for an entry, as many entries as cost 16 bytes each, and 1 MB for small files.
    EXPECT_LE(memory.lastSize, 6 * bytes.size() + (2U << 20));
    EXPECT_GE(memory.lastSize, std::size_t{24} * messages);
    EXPECT_TRUE(cursor.setToFirst());
    EXPECT_EQ(std::pair(cursor.getId(), cursor.getLanguage()), std::pair(1UL, 1U));
    if (messages > 100) continue;  // the list is cut
    std::size_t count = 1;
    while (cursor.setToNext()) ++count;
    EXPECT_EQ(count, std::size_t{messages} * languages);
  }
}

}  // namespace
