// Tests the reader of message tables, also with damaged and crafted ones.
#include "messages/message_resource.h"

#include "messages/test/catalog_builder.h"
#include "platform/test/test.h"

namespace {

using vel::messages::MessageResource;
using vel::test::Bytes;
using vel::test::messageEntry;

std::string textOf(const MessageResource::Entry& entry) {
  std::string text;
  for (std::size_t i = 0; i < entry.sizeInBytes; i += entry.unicode ? 2 : 1)
    text += static_cast<char>(entry.text[i]);
  return text;
}

/// Lists all entries as "id:text ", or "id=text " for UTF-16.
std::string walk(const Bytes& bytes) {
  const MessageResource resource(bytes.data(), bytes.size());
  std::string list;
  MessageResource::Cursor cursor;
  for (MessageResource::Entry entry{}; resource.next(cursor, entry);)
    list += std::to_string(entry.id) + (entry.unicode ? '=' : ':') + textOf(entry) + ' ';
  return list;
}

/// Returns the start of a table: its count and its blocks {lowest id, highest id, offset}, unchecked.
Bytes blocks(const std::vector<std::vector<std::uint32_t>>& all) {
  Bytes bytes;
  bytes.add32(all.size());
  for (const auto& block : all)
    for (const std::uint32_t number : block) bytes.add32(number);
  return bytes;
}

TEST(MessageResource, FindsMessagesInEveryBlock) {
  const Bytes table = blocks({{1, 3, 40}, {9, 9, 72}, {0xFFFFFFFF, 0xFFFFFFFF, 88}})
                          .add(messageEntry("one"))
                          .add(messageEntry(""))
                          .add(messageEntry("three", true))
                          .add(messageEntry("n%0\n", true))
                          .add(messageEntry("last"));
  const std::pair<std::uint32_t, std::string> rows[] = {{0, "-"},     {1, "one"}, {2, ""},
                                                        {3, "three"}, {4, "-"},   {8, "-"},
                                                        {9, "n%0\n"}, {10, "-"},  {0xFFFFFFFF, "last"}};
  MessageResource::Entry entry{};
  for (const auto& [id, text] : rows)
    EXPECT_EQ(MessageResource(table.data(), table.size()).find(id, entry) ? textOf(entry) : "-", text) << id;
  EXPECT_EQ(walk(table), "1:one 2: 3=three 9=n%0\n 4294967295:last ");
}

TEST(MessageResource, TextEndsAtItsFirstNul) {
  // In UTF-16 a single zero byte does not end the text, and an incomplete unit at the end is dropped.
  const Bytes table = blocks({{1, 2, 16}})
                          .add({12, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 0, 0})
                          .add({11, 0, 1, 0, 'a', 0, 0, 1, 'c', 0, 'x'});
  EXPECT_EQ(walk(table), std::string("1:a 2=a\0c ", 10));
}

TEST(MessageResource, SkipsDamagedBlocksAndEntries) {
  const Bytes a = messageEntry("aaa"), b = messageEntry("bbb");
  const Bytes bad = {3, 0, 0, 0, 'x', 0, 0, 0}, tooLong = {0xFF, 0xFF, 0, 0, 'x', 0, 0, 0};
  const std::tuple<const char*, Bytes, const char*> rows[] = {
      {"empty", {}, ""},
      {"half a count", {1, 0, 0}, ""},
      {"more blocks than bytes", Bytes().add32(2).addZeros(12), ""},
      {"most blocks", Bytes().add32(0xFFFFFFFF).addZeros(100), ""},
      {"entries after the end", blocks({{1, 1, 0xFFFFFFF0}}), ""},
      {"one byte longer than the rest", blocks({{1, 1, 16}}).add({9, 0, 0, 0, 'x', 0, 0, 0}), ""},
      {"entry too short", blocks({{1, 2, 28}, {5, 5, 44}}).add(a).add(bad).add(b), "1:aaa 5:bbb "},
      {"too long", blocks({{1, 2, 28}, {5, 5, 36}}).add(a).add(b).add(tooLong), "1:aaa 2:bbb 5:bbb "},
      {"fewer entries than ids", blocks({{1, 0xFFFFFFFF, 16}}).add(a).add(b), "1:aaa 2:bbb "},
      {"ids backwards in a block", blocks({{2, 1, 28}, {5, 5, 28}}).add(a), "5:aaa "},
      {"blocks backwards", blocks({{5, 5, 28}, {1, 1, 36}}).add(a).add(b), "5:aaa "},
  };
  for (const auto& [name, bytes, entries] : rows) EXPECT_EQ(walk(bytes), entries) << name;
}

TEST(MessageResource, WalkIsBoundedWhenBlocksShareTheirEntries) {
  constexpr std::uint32_t kCount = 1000;  // of blocks, and of the ids of each
  std::vector<std::vector<std::uint32_t>> all;
  for (std::uint32_t first = 0; first < kCount * kCount; first += kCount)
    all.push_back({first, first + kCount - 1, 4 + 12 * kCount});
  Bytes table = blocks(all);
  for (std::uint32_t i = 0; i < kCount; ++i) table.add32(4);
  EXPECT_LE(std::ranges::count(walk(table), ' '), std::ssize(table) / 4);
  MessageResource::Entry entry{};
  EXPECT_TRUE(MessageResource(table.data(), table.size()).find(kCount * kCount - 1, entry));
}

}  // namespace
