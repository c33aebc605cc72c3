#include "messages/message_resource.h"

#include <gtest/gtest.h>

#include "messages/test/catalog_builder.h"

namespace {

using vel::messages::MessageResource;
using vel::test::blockHeader;
using vel::test::ByteVector;
using vel::test::messageTable;
using vel::test::tableEntry;

MessageResource resourceOf(const ByteVector& bytes) {
  return MessageResource(bytes.data(), bytes.size());
}

std::string textOf(const MessageResource::Entry& entry) {
  std::string text;
  for (std::size_t i = 0; i < entry.sizeInBytes; i += entry.unicode ? 2 : 1)
    text += static_cast<char>(entry.text[i]);
  return text;
}

/// All entries as "id:text ", UTF-16 ones as "id=text ".
std::string walk(const ByteVector& bytes) {
  const MessageResource resource = resourceOf(bytes);
  std::string list;
  MessageResource::Cursor cursor;
  for (MessageResource::Entry entry{}; resource.next(cursor, entry);)
    list += std::to_string(entry.id) + (entry.unicode ? '=' : ':') + textOf(entry) + ' ';
  return list;
}

std::string lookUp(const ByteVector& bytes, std::uint32_t id) {
  MessageResource::Entry entry{};
  return resourceOf(bytes).find(id, entry) ? textOf(entry) : "-";
}

ByteVector joined(ByteVector bytes, const std::vector<ByteVector>& parts) {
  for (const ByteVector& part : parts) bytes.insert(bytes.end(), part.begin(), part.end());
  return bytes;
}

TEST(MessageResource, FindsMessagesInEveryBlock) {
  const ByteVector table =
      messageTable({{1, "one"}, {2, ""}, {3, "three", true}, {9, "n%0\n", true}, {0xFFFFFFFF, "last"}});
  const std::pair<std::uint32_t, std::string> rows[] = {{0, "-"},     {1, "one"}, {2, ""},
                                                        {3, "three"}, {4, "-"},   {8, "-"},
                                                        {9, "n%0\n"}, {10, "-"},  {0xFFFFFFFF, "last"}};
  for (const auto& [id, text] : rows) EXPECT_EQ(lookUp(table, id), text) << id;
  EXPECT_EQ(walk(table), "1:one 2: 3=three 9=n%0\n 4294967295:last ");
}

TEST(MessageResource, TextEndsAtItsFirstZeroCharacter) {
  ByteVector table = blockHeader({{1, 2, 16}});
  table =
      joined(table, {{12, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 0, 0}, {11, 0, 1, 0, 'a', 0, 0, 1, 'c', 0, 'x'}});
  MessageResource::Entry entry{};
  ASSERT_TRUE(resourceOf(table).find(1, entry));
  EXPECT_EQ(entry.sizeInBytes, 1U);
  // Half a zero character does not end a text, half a character at the end is dropped.
  ASSERT_TRUE(resourceOf(table).find(2, entry));
  EXPECT_EQ(entry.sizeInBytes, 6U);
}

TEST(MessageResource, DamagedPartsAreLeftOut) {
  const ByteVector a = tableEntry({0, "aaa"});
  const ByteVector b = tableEntry({0, "bbb"});
  const ByteVector bad = {3, 0, 0, 0, 'x', 0, 0, 0};
  const ByteVector tooLong = {0xFF, 0xFF, 0, 0, 'x', 0, 0, 0};
  struct Row {
    const char* name;
    ByteVector bytes;
    const char* entries;
  };
  const Row rows[] = {
      {"empty", {}, ""},
      {"half a count", {1, 0, 0}, ""},
      {"more blocks than bytes", joined({2, 0, 0, 0}, {ByteVector(12)}), ""},
      {"most blocks", joined({0xFF, 0xFF, 0xFF, 0xFF}, {ByteVector(100)}), ""},
      {"entries behind the end", blockHeader({{1, 1, 0xFFFFFFF0}}), ""},
      {"entry too short", joined(blockHeader({{1, 2, 28}, {5, 5, 44}}), {a, bad, b}), "1:aaa 5:bbb "},
      {"entry too long", joined(blockHeader({{1, 2, 28}, {5, 5, 36}}), {a, b, tooLong}),
       "1:aaa 2:bbb 5:bbb "},
      {"fewer entries than ids", joined(blockHeader({{1, 0xFFFFFFFF, 16}}), {a, b}), "1:aaa 2:bbb "},
      {"ids backwards in a block", joined(blockHeader({{2, 1, 28}, {5, 5, 28}}), {a}), "5:aaa "},
      {"blocks backwards", joined(blockHeader({{5, 5, 28}, {1, 1, 36}}), {a, b}), "5:aaa "},
  };
  for (const Row& row : rows) EXPECT_EQ(walk(row.bytes), row.entries) << row.name;
}

TEST(MessageResource, WalkIsBoundedWhenBlocksShareTheirEntries) {
  constexpr std::uint32_t kBlocks = 1000;
  constexpr std::uint32_t kIdsPerBlock = 1000;
  std::vector<vel::test::TestBlock> blocks;
  for (std::uint32_t i = 0; i < kBlocks; ++i)
    blocks.push_back({i * kIdsPerBlock, i * kIdsPerBlock + kIdsPerBlock - 1, 4 + 12 * kBlocks});
  ByteVector table = blockHeader(blocks);
  for (std::uint32_t i = 0; i < kIdsPerBlock; ++i) table = joined(std::move(table), {{4, 0, 0, 0}});
  MessageResource::Cursor cursor;
  MessageResource::Entry entry{};
  std::size_t count = 0;
  while (resourceOf(table).next(cursor, entry)) ++count;
  EXPECT_LE(count, table.size() / 4);
  EXPECT_TRUE(resourceOf(table).find(kBlocks * kIdsPerBlock - 1, entry));
}

TEST(MessageResource, NoTruncationReadsBehindTheEnd) {
  const ByteVector table = messageTable({{1, "one"}, {2, "two", true}, {7, "seven"}});
  std::string previous;
  for (std::size_t size = 0; size <= table.size(); ++size) {
    // A copy of exactly this size, so that the sanitizer sees a read behind it.
    const std::string list =
        walk(ByteVector(table.begin(), table.begin() + static_cast<std::ptrdiff_t>(size)));
    EXPECT_EQ(list.compare(0, previous.size(), previous), 0) << size;
    previous = list;
  }
  EXPECT_EQ(previous, "1:one 2=two 7:seven ");
}

}  // namespace
