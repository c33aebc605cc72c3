// Tests the reader of library files, also with damaged and crafted ones.
#include "messages/portable_executable.h"

#include "messages/message_resource.h"
#include "messages/test/catalog_builder.h"
#include "platform/test/test.h"

namespace {

using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;
using namespace vel::test;

Bytes tableSaying(const char* text) {
  return messageTable({{1, text}});
}

/// Lists all tables as "ID/language:size ".
std::string listTables(const Bytes& bytes) {
  const PortableExecutable file(bytes.data(), bytes.size());
  std::string list;
  PortableExecutable::Cursor cursor;
  for (MessageTable table{}; file.nextMessageTable(cursor, table);)
    list += std::to_string(table.id) + '/' + std::to_string(table.language) + ':' +
            std::to_string(table.sizeInBytes) + ' ';
  return list;
}

/// Applies changes "offset=value" of 32 bits, hexadecimal, with blanks between them.
void change(Bytes& file, const std::string& changes) {
  const auto number = [](const std::string& digits) { return std::stoul(digits, nullptr, 16); };
  std::istringstream words(changes);
  for (std::string word; words >> word;)
    file.put32(number(word), static_cast<std::uint32_t>(number(word.substr(word.find('=') + 1))));
}

std::string messageIn(const Bytes& bytes, std::uint32_t language, std::uint32_t id) {
  MessageTable table{};
  MessageResource::Entry entry{};
  if (!PortableExecutable(bytes.data(), bytes.size()).findMessageTable(language, table)) return "no table";
  if (!MessageResource(table.data, table.sizeInBytes).find(id, entry)) return "no message";
  return {entry.text, entry.text + entry.sizeInBytes};
}

TEST(PortableExecutable, ListsTheTablesOf32And64BitFiles) {
  const vel::test::TestTables tables = {
      {1, {{0x407, tableSaying("eins")}, {0x409, tableSaying("one one one")}}}, {2, {{0, tableSaying("")}}}};
  for (const bool isPe32Plus : {false, true})
    EXPECT_EQ(listTables(libraryFile(tables, isPe32Plus)), "1/1031:28 1/1033:32 2/0:24 ") << isPe32Plus;
  EXPECT_EQ(listTables(libraryFile({})), "");
}

TEST(PortableExecutable, ChoosesOneTableForALanguage) {
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

TEST(PortableExecutable, SkipsDamagedResourceTrees) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/damaged_trees.tsv")) {
    Bytes file = libraryFile({{1, {{0x409, tableSaying("a")}, {0x40A, tableSaying("b")}}}});
    file.resize(0x4000);  // the limits are those of the section, not the file's end
    change(file, row[1]);
    EXPECT_EQ(listTables(file), row.at(2)) << row[0];
  }
}

// The two catalogs are written by the compiler.
TEST(PortableExecutable, IsValidIfALoaderWouldMapIt) {
  for (const char* name : {"small_catalog.DLL", "qammsg50.DLL"}) {
    const std::string file = vel::test::readFile(name);
    const Bytes sound(file.begin(), file.end());
    EXPECT_TRUE(PortableExecutable(sound.data(), sound.size()).isValid()) << name;
    for (std::size_t size = 0; size < sound.size(); ++size) {
      const auto end = sound.begin() + static_cast<std::ptrdiff_t>(size);
      const Bytes part(sound.begin(), end);
      // Zeros fill the last section's last 512 bytes in the file.
      const bool isComplete = sound.end() - end < 512 && std::count(end, sound.end(), 0) == sound.end() - end;
      if (!PortableExecutable(part.data(), part.size()).isValid()) continue;
      EXPECT_TRUE(isComplete) << name << size;
      EXPECT_EQ(listTables(part), listTables(sound)) << name << size;
    }
  }
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/damaged_headers.tsv")) {
    Bytes file = libraryFile({{1, {{0x409, tableSaying("a")}}}});
    change(file, row[1]);
    EXPECT_EQ(PortableExecutable(file.data(), file.size()).isValid(), row.at(2) == "yes") << row[0];
  }
}

TEST(PortableExecutable, WalkIsBoundedWhenBranchesAreShared) {
  for (const std::size_t tableSize : {1U, 9U, 20000U}) {
    const Bytes file = vel::test::libraryOfSharedBranches(Bytes(tableSize), 1000, 1000);
    const std::string list = listTables(file);
    const auto count = static_cast<std::size_t>(std::ranges::count(list, ' '));
    EXPECT_GT(count, 0U);
    EXPECT_LE(count, file.size() / 8);
    EXPECT_LE(count * tableSize, 64 * file.size());
  }
}

}  // namespace
