#include "messages/portable_executable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

#include "messages/message_resource.h"
#include "messages/test/catalog_builder.h"

namespace {

using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;
using vel::test::append16;
using vel::test::append32;
using vel::test::ByteVector;
using vel::test::kTreeOffset;
using vel::test::libraryFile;
using vel::test::messageTable;
using vel::test::put32;

/// Made by the message compiler: messages 1, 2 and 5 in English and German.
constexpr const char* kRealCatalogs[] = {"small_catalog.DLL", "small_ansi_catalog.DLL"};

ByteVector readFile(const char* name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

ByteVector tableSaying(const char* text) {
  return messageTable({{1, text}});
}

/// All tables as "name/language:size of the table ".
std::string listTables(const ByteVector& bytes) {
  const PortableExecutable file(bytes.data(), bytes.size());
  std::string list;
  PortableExecutable::Cursor cursor;
  for (MessageTable table{}; file.nextMessageTable(cursor, table);) {
    list += std::to_string(table.nameId) + '/' + std::to_string(table.language) + ':' +
            std::to_string(table.sizeInBytes) + ' ';
  }
  return list;
}

std::string messageIn(const ByteVector& bytes, std::uint32_t language, std::uint32_t id) {
  MessageTable table{};
  MessageResource::Entry entry{};
  if (!PortableExecutable(bytes.data(), bytes.size()).findMessageTable(language, table)) return "no table";
  if (!MessageResource(table.data, table.sizeInBytes).find(id, entry)) return "no message";
  return {entry.text, entry.text + entry.sizeInBytes};
}

/// Touches every byte that the parsers hand out; the number of entries.
std::size_t readEverything(const ByteVector& bytes) {
  const PortableExecutable file(bytes.data(), bytes.size());
  std::size_t entries = 0;
  std::uint32_t sum = 0;
  PortableExecutable::Cursor cursor;
  for (MessageTable table{}; file.nextMessageTable(cursor, table);) {
    const MessageResource resource(table.data, table.sizeInBytes);
    MessageResource::Cursor place;
    MessageResource::Entry entry{};
    for (; resource.next(place, entry); ++entries)
      for (std::size_t i = 0; i < entry.sizeInBytes; ++i) sum += entry.text[i];
    resource.find(2, entry);
  }
  volatile std::uint32_t used = sum;
  static_cast<void>(used);
  return entries;
}

TEST(PortableExecutable, WalksTheTablesOfBothFormats) {
  const std::vector<vel::test::TestTable> tables = {
      {1, 0x407, tableSaying("eins")}, {1, 0x409, tableSaying("one one one")}, {2, 0, tableSaying("")}};
  for (const bool wide : {false, true})
    EXPECT_EQ(listTables(libraryFile(tables, wide)), "1/1031:28 1/1033:32 2/0:24 ") << wide;
  EXPECT_EQ(listTables(libraryFile({})), "");
}

TEST(PortableExecutable, LanguageChoosesOneTable) {
  const ByteVector german = libraryFile({{1, 0x407, tableSaying("de")}});
  const ByteVector several = libraryFile({{1, 0x07, tableSaying("neutral de")},
                                          {1, 0x407, messageTable({{2, "de"}})},
                                          {1, 0x809, tableSaying("uk")}});
  const ByteVector neutral = libraryFile({{1, 0, tableSaying("none")}, {1, 0x409, tableSaying("us")}});
  struct Row {
    const ByteVector& file;
    std::uint32_t language;
    const char* message;
  };
  const Row rows[] = {
      {german, 0x407, "de"},
      {german, 0x409, "no table"},
      {german, 0xC07, "no table"},
      {german, 0, "no table"},
      {german, 0x10407, "de"},
      {several, 0xC07, "neutral de"},
      {several, 0x407, "no message"},  // the table that was chosen is the only one asked
      {several, 0x409, "no table"},
      {neutral, 0x409, "us"},
      {neutral, 0x809, "none"},
      {neutral, 0x407, "none"},
      {libraryFile({{2, 0x409, tableSaying("two")}}), 0x409, "no table"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(messageIn(row.file, row.language, 1), row.message) << std::hex << row.language;
}

TEST(PortableExecutable, DamagedTreesAreLeftOut) {
  constexpr std::size_t kTypeEntry = kTreeOffset + 16;
  constexpr std::size_t kNameEntry = kTypeEntry + 8 + 16;
  constexpr std::size_t kLanguageEntry = kNameEntry + 8 + 16;
  constexpr std::size_t kDataEntry = kLanguageEntry + 16;
  constexpr std::uint32_t kDirectory = 0x80000000;
  struct Row {
    const char* name;
    std::size_t offset;
    std::uint32_t value;
    const char* tables;
  };
  const Row rows[] = {
      {"intact", kTypeEntry, 11, "1/1033:24 1/1034:24 "},
      {"no library", 0, 0, ""},
      {"header behind the end", 0x3C, 0xFFFFFFFF, ""},
      {"no signature", 0x40, 0x454E, ""},
      {"unknown format", 0x58, 0x30B, ""},
      {"two data directories", 0x58 + 108, 2, ""},
      {"tree outside of the sections", 0x58 + 112 + 16, 0x900, ""},
      {"97 sections", 0x44, 0x00618664, ""},
      {"other type", kTypeEntry, 10, ""},
      {"type without a directory", kTypeEntry + 4, 24, ""},
      {"type is its own directory", kTypeEntry + 4, kDirectory, ""},
      {"type behind the end", kTypeEntry + 4, 0xFFFFFFFF, ""},
      {"name is text", kNameEntry, kDirectory + 1, ""},
      {"name goes back to the type", kNameEntry + 4, kDirectory + 24, ""},
      {"directory in place of a table", kLanguageEntry + 4, kDirectory + 24, "1/1034:24 "},
      {"language is text", kLanguageEntry, kDirectory + 0x409, "1/1034:24 "},
      {"table outside of the sections", kDataEntry, 0xFFFFFFFF, "1/1034:24 "},
      {"table before its section", kDataEntry, 0xFFF, "1/1034:24 "},
      {"table too big", kDataEntry + 4, 0x1000, "1/1034:24 "},
      {"table of the largest size", kDataEntry + 4, 0xFFFFFFFF, "1/1034:24 "},
  };
  for (const Row& row : rows) {
    ByteVector file = libraryFile({{1, 0x409, tableSaying("a")}, {1, 0x40A, tableSaying("b")}});
    file.resize(0x4000);  // so that only the section and the number of sections set the limits
    put32(file, row.offset, row.value);
    EXPECT_EQ(listTables(file), row.tables) << row.name;
  }
}

/// A thousand names lead to one directory of a thousand languages, and these to one table.
ByteVector libraryOfSharedBranches(std::size_t tableSize) {
  constexpr std::uint32_t kDirectory = 0x80000000;
  constexpr std::uint32_t kCount = 1000;
  constexpr std::uint32_t kDataEntry = 72;
  ByteVector file = libraryFile({{1, 0x409, ByteVector(tableSize)}});
  const auto names = static_cast<std::uint32_t>(file.size()) - kTreeOffset;
  const std::uint32_t languages = names + 16 + 8 * kCount;
  put32(file, kTreeOffset + 20, kDirectory + names);
  for (const std::uint32_t target : {kDirectory + languages, kDataEntry}) {
    file.resize(file.size() + 14);
    append16(file, kCount);
    for (std::uint32_t i = 0; i < kCount; ++i) {
      append32(file, i);
      append32(file, target);
    }
  }
  return file;
}

TEST(PortableExecutable, WalkIsBoundedWhenBranchesAreShared) {
  for (const std::size_t tableSize : {1U, 20000U}) {
    const ByteVector file = libraryOfSharedBranches(tableSize);
    const std::string list = listTables(file);
    const auto count = static_cast<std::size_t>(std::count(list.begin(), list.end(), ' '));
    EXPECT_GT(count, 0U);
    EXPECT_LE(count, file.size() / 8);
    EXPECT_LE(count * tableSize, 64 * file.size());
  }
}

TEST(PortableExecutable, ReadsTheMessageCompilersCatalogs) {
  const ByteVector unicode = readFile(kRealCatalogs[0]);
  const ByteVector ansi = readFile(kRealCatalogs[1]);
  EXPECT_EQ(readEverything(unicode), 6U);
  EXPECT_EQ(readEverything(ansi), 6U);
  EXPECT_EQ(messageIn(ansi, 0x409, 1), "[SMALL]%0");
  EXPECT_EQ(messageIn(ansi, 0x407, 2),
            "Gr\xFC\xDF"
            "e, %1%0");
  EXPECT_EQ(messageIn(ansi, 0x407, 5), "zwei\nZeilen");
  EXPECT_EQ(messageIn(unicode, 0x407, 2), std::string("G\0r\0\xFC\0\xDF\0e\0,\0 \0%\0"
                                                      "1\0%\0"
                                                      "0\0",
                                                      22));
  EXPECT_EQ(messageIn(unicode, 0x409, 3), "no message");
  EXPECT_EQ(messageIn(unicode, 0x40C, 1), "no table");
}

TEST(PortableExecutable, SurvivesEveryTruncationOfARealCatalog) {
  const ByteVector whole = readFile(kRealCatalogs[0]);
  ASSERT_FALSE(whole.empty());
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const auto end = whole.begin() + static_cast<std::ptrdiff_t>(size);
    EXPECT_LE(readEverything(ByteVector(whole.begin(), end)), 6U) << size;
  }
}

TEST(PortableExecutable, SurvivesEveryDamagedByteOfARealCatalog) {
  ByteVector file = readFile(kRealCatalogs[0]);
  ASSERT_FALSE(file.empty());
  for (std::uint8_t& byte : file) {
    const std::uint8_t sound = byte;
    for (const std::uint32_t damaged : {0U, 0xFFU, 0x80U, sound ^ 1U, sound + 4U}) {
      byte = static_cast<std::uint8_t>(damaged);
      EXPECT_LE(readEverything(file), file.size() / 4) << &byte - file.data();
    }
    byte = sound;
  }
}

TEST(PortableExecutable, SurvivesRandomDamage) {
  const ByteVector sound =
      libraryFile({{1, 0x407, messageTable({{1, "eins"}, {2, "zwei", true}, {9, "neun"}})},
                   {1, 0x409, messageTable({{1, "one"}, {2, "two"}})}});
  std::mt19937 random(2024);
  for (int round = 0; round < 20000; ++round) {
    ByteVector file = sound;
    for (auto changes = 1 + random() % 8; changes > 0; --changes) {
      const std::size_t offset =
          random() % 4 == 0 ? random() % file.size() : kTreeOffset + random() % (file.size() - kTreeOffset);
      file[offset] = static_cast<std::uint8_t>(random());
    }
    EXPECT_LE(readEverything(file), 64 * file.size() / 4) << round;
  }
}

}  // namespace
