#include "messages/portable_executable.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "messages/message_resource.h"
#include "messages/test/catalog_builder.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"

namespace {

using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;
using vel::test::Bytes;
using vel::test::kDirectory;
using vel::test::kTreeOffset;
using vel::test::libraryFile;
using vel::test::messageTable;

Bytes readFile(const char* name) {
  const std::string bytes = vel::test::readFile(name);
  EXPECT_FALSE(bytes.empty());
  return {bytes.begin(), bytes.end()};
}

Bytes tableSaying(const char* text) {
  return messageTable({{1, text}});
}

/// All tables as "name/language:size of the table ".
std::string listTables(const Bytes& bytes) {
  const PortableExecutable file(bytes.data(), bytes.size());
  std::string list;
  PortableExecutable::Cursor cursor;
  for (MessageTable table{}; file.nextMessageTable(cursor, table);)
    list += std::to_string(table.nameId) + '/' + std::to_string(table.language) + ':' +
            std::to_string(table.sizeInBytes) + ' ';
  return list;
}

std::string messageIn(const Bytes& bytes, std::uint32_t language, std::uint32_t id) {
  MessageTable table{};
  MessageResource::Entry entry{};
  if (!PortableExecutable(bytes.data(), bytes.size()).findMessageTable(language, table)) return "no table";
  if (!MessageResource(table.data, table.sizeInBytes).find(id, entry)) return "no message";
  return {entry.text, entry.text + entry.sizeInBytes};
}

/// Touches every byte that the parsers hand out; the number of entries.
std::size_t readEverything(const Bytes& bytes) {
  const PortableExecutable file(bytes.data(), bytes.size());
  std::size_t entries = 0;
  volatile std::uint8_t touched = 0;
  PortableExecutable::Cursor cursor;
  for (MessageTable table{}; file.nextMessageTable(cursor, table);) {
    const MessageResource resource(table.data, table.sizeInBytes);
    MessageResource::Cursor place;
    MessageResource::Entry entry{};
    for (; resource.next(place, entry); ++entries)
      for (std::size_t i = 0; i < entry.sizeInBytes; ++i) touched = entry.text[i];
    resource.find(2, entry);
  }
  static_cast<void>(touched);
  return entries;
}

TEST(PortableExecutable, WalksTheTablesOfBothFormats) {
  const vel::test::TestTables tables = {
      {1, {{0x407, tableSaying("eins")}, {0x409, tableSaying("one one one")}}}, {2, {{0, tableSaying("")}}}};
  for (const bool wide : {false, true})
    EXPECT_EQ(listTables(libraryFile(tables, wide)), "1/1031:28 1/1033:32 2/0:24 ") << wide;
  EXPECT_EQ(listTables(libraryFile({})), "");
}

TEST(PortableExecutable, LanguageChoosesOneTable) {
  const std::map<std::string, Bytes> files = {
      {"german", libraryFile({{1, {{0x407, tableSaying("de")}}}})},
      {"several", libraryFile({{1,
                                {{0x07, tableSaying("neutral de")},
                                 {0x407, messageTable({{2, "de"}})},
                                 {0x809, tableSaying("uk")}}}})},
      {"neutral", libraryFile({{1, {{0, tableSaying("none")}, {0x409, tableSaying("us")}}}})},
      {"other name", libraryFile({{2, {{0x409, tableSaying("two")}}}})}};
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/chosen_tables.tsv"))
    EXPECT_EQ(messageIn(files.at(row[0]), static_cast<std::uint32_t>(std::stoul(row[1], nullptr, 0)), 1),
              row.at(2))
        << row[0] << row[1];
}

TEST(PortableExecutable, DamagedTreesAreLeftOut) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/damaged_trees.tsv")) {
    Bytes file = libraryFile({{1, {{0x409, tableSaying("a")}, {0x40A, tableSaying("b")}}}});
    file.resize(0x4000);  // so that only the section and the number of sections set the limits
    file.put32(std::stoul(row[1], nullptr, 16),
               static_cast<std::uint32_t>(std::stoul(row.at(2), nullptr, 16)));
    EXPECT_EQ(listTables(file), row.at(3)) << row[0];
  }
}

/// A thousand names lead to one directory of a thousand languages, and these to one table.
Bytes libraryOfSharedBranches(std::size_t tableSize) {
  constexpr std::uint32_t kCount = 1000;
  constexpr std::uint32_t kDataEntry = 72;
  Bytes file = libraryFile({{1, {{0x409, Bytes(tableSize)}}}});
  const auto names = static_cast<std::uint32_t>(file.size()) - kTreeOffset;
  const std::uint32_t languages = names + 16 + 8 * kCount;
  file.put32(kTreeOffset + 20, kDirectory + names);
  for (const std::uint32_t target : {kDirectory + languages, kDataEntry}) {
    file.addZeros(14).add16(kCount);
    for (std::uint32_t i = 0; i < kCount; ++i) file.add32(i).add32(target);
  }
  return file;
}

TEST(PortableExecutable, WalkIsBoundedWhenBranchesAreShared) {
  for (const std::size_t tableSize : {1U, 9U, 20000U}) {
    const Bytes file = libraryOfSharedBranches(tableSize);
    const std::string list = listTables(file);
    const auto count = static_cast<std::size_t>(std::count(list.begin(), list.end(), ' '));
    EXPECT_GT(count, 0U);
    EXPECT_LE(count, file.size() / 8);
    EXPECT_LE(count * tableSize, 64 * file.size());
  }
}

// They hold messages 1, 2 and 5 in English and German.
TEST(PortableExecutable, ReadsTheMessageCompilersCatalogs) {
  const Bytes unicode = readFile("small_catalog.DLL"), ansi = readFile("small_ansi_catalog.DLL");
  EXPECT_EQ(readEverything(unicode), 6U);
  EXPECT_EQ(readEverything(ansi), 6U);
  EXPECT_EQ(messageIn(ansi, 0x409, 1), "[SMALL]%0");
  EXPECT_EQ(messageIn(ansi, 0x407, 2),
            "Gr\xFC\xDF"
            "e, %1%0");
  EXPECT_EQ(messageIn(ansi, 0x407, 5), "zwei\nZeilen");
  EXPECT_EQ(messageIn(unicode, 0x407, 2).substr(0, 6), std::string("G\0r\0\xFC", 6));
  EXPECT_EQ(messageIn(unicode, 0x409, 3), "no message");
  EXPECT_EQ(messageIn(unicode, 0x40C, 1), "no table");
  for (std::size_t size = 0; size < unicode.size(); ++size) {
    const auto end = unicode.begin() + static_cast<std::ptrdiff_t>(size);
    EXPECT_LE(readEverything(Bytes(unicode.begin(), end)), 6U) << size;
  }
}

TEST(PortableExecutable, SurvivesAnyDamage) {
  const Bytes german = messageTable({{1, "eins"}, {2, "zwei", true}, {9, "neun"}});
  const Bytes sound = libraryFile({{1, {{0x407, german}, {0x409, messageTable({{1, "one"}, {2, "two"}})}}}});
  Bytes file = sound;
  for (std::uint8_t& byte : file) {
    for (int damaged = 0; damaged < 256; ++damaged) {
      byte = static_cast<std::uint8_t>(damaged);
      EXPECT_LE(readEverything(file), 64 * file.size() / 4) << &byte - file.data();
    }
    byte = sound[static_cast<std::size_t>(&byte - file.data())];
  }
}

}  // namespace
