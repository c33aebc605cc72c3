// Layouts are spelled out here once more, independently of the parsers.

#include "messages/test/catalog_builder.h"

namespace vel::test {
namespace {

constexpr std::uint32_t kSectionAddress = 0x1000;
constexpr std::uint32_t kDirectory = 0x80000000;

void append(ByteVector& bytes, const ByteVector& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

void appendDirectory(ByteVector& bytes, std::size_t entryCount) {
  bytes.resize(bytes.size() + 12);
  append16(bytes, 0);
  append16(bytes, static_cast<std::uint32_t>(entryCount));
}

void appendEntry(ByteVector& bytes, std::uint32_t name, std::size_t offset) {
  append32(bytes, name);
  append32(bytes, static_cast<std::uint32_t>(offset));
}

std::vector<std::vector<TestTable>> groupedByName(const std::vector<TestTable>& tables) {
  std::vector<std::vector<TestTable>> groups;
  for (const TestTable& table : tables) {
    if (groups.empty() || groups.back().front().nameId != table.nameId) groups.emplace_back();
    groups.back().push_back(table);
  }
  return groups;
}

/// Directories of type, names and languages, then the tables' addresses and bytes.
ByteVector resourceTree(const std::vector<TestTable>& tables) {
  const auto groups = groupedByName(tables);
  const std::size_t languageDirectories = 24 + 16 + 8 * groups.size();
  const std::size_t dataEntries = languageDirectories + 16 * groups.size() + 8 * tables.size();
  ByteVector tree;
  appendDirectory(tree, 1);
  appendEntry(tree, 11, kDirectory + 24);
  appendDirectory(tree, groups.size());
  std::size_t directory = languageDirectories;
  for (const auto& group : groups) {
    appendEntry(tree, group.front().nameId, kDirectory + directory);
    directory += 16 + 8 * group.size();
  }
  std::size_t entry = dataEntries;
  for (const auto& group : groups) {
    appendDirectory(tree, group.size());
    for (const TestTable& table : group) {
      appendEntry(tree, table.language, entry);
      entry += 16;
    }
  }
  for (const TestTable& table : tables) {
    appendEntry(tree, static_cast<std::uint32_t>(kSectionAddress + entry), table.data.size());
    tree.resize(tree.size() + 8);
    entry += table.data.size();
  }
  for (const TestTable& table : tables) append(tree, table.data);
  return tree;
}

ByteVector headers(std::size_t treeSize, bool wide) {
  ByteVector file = {'M', 'Z'};
  file.resize(0x3C);
  append32(file, 0x40);
  append32(file, 0x4550);
  append16(file, wide ? 0x8664 : 0x14C);
  append16(file, 1);  // sections
  file.resize(file.size() + 12);
  append16(file, wide ? 240 : 224);
  append16(file, 0x2000);
  append16(file, wide ? 0x20B : 0x10B);
  file.resize(file.size() + (wide ? 106 : 90));
  append32(file, 16);  // data directories
  file.resize(file.size() + 16);
  append32(file, kSectionAddress);
  append32(file, static_cast<std::uint32_t>(treeSize));
  file.resize(file.size() + std::size_t{13} * 8);
  append(file, {'.', 'r', 's', 'r', 'c', 0, 0, 0});
  append32(file, static_cast<std::uint32_t>(treeSize));
  append32(file, kSectionAddress);
  append32(file, static_cast<std::uint32_t>(treeSize));
  append32(file, kTreeOffset);
  file.resize(kTreeOffset);
  return file;
}

}  // namespace

void append16(ByteVector& bytes, std::uint32_t value) {
  bytes.push_back(static_cast<std::uint8_t>(value));
  bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

void append32(ByteVector& bytes, std::uint32_t value) {
  append16(bytes, value);
  append16(bytes, value >> 16);
}

void put32(ByteVector& bytes, std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) bytes.at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

ByteVector tableEntry(const TestMessage& message) {
  ByteVector text;
  for (const char c : message.text + '\0') {
    text.push_back(static_cast<std::uint8_t>(c));
    if (message.unicode) text.push_back(0);
  }
  while (text.size() % 4 != 0) text.push_back(0);
  ByteVector entry;
  append16(entry, static_cast<std::uint32_t>(text.size() + 4));
  append16(entry, message.unicode ? 1 : 0);
  append(entry, text);
  return entry;
}

ByteVector blockHeader(const std::vector<TestBlock>& blocks) {
  ByteVector bytes;
  append32(bytes, static_cast<std::uint32_t>(blocks.size()));
  for (const TestBlock& block : blocks) {
    append32(bytes, block.lowId);
    append32(bytes, block.highId);
    append32(bytes, block.offset);
  }
  return bytes;
}

ByteVector messageTable(const std::vector<TestMessage>& messages) {
  std::vector<TestBlock> blocks;
  ByteVector entries;
  for (const TestMessage& message : messages) {
    if (blocks.empty() || blocks.back().highId + 1 != message.id)
      blocks.push_back({message.id, message.id, static_cast<std::uint32_t>(entries.size())});
    blocks.back().highId = message.id;
    append(entries, tableEntry(message));
  }
  for (TestBlock& block : blocks) block.offset += static_cast<std::uint32_t>(4 + 12 * blocks.size());
  ByteVector bytes = blockHeader(blocks);
  append(bytes, entries);
  return bytes;
}

ByteVector libraryFile(const std::vector<TestTable>& tables, bool wide) {
  const ByteVector tree = resourceTree(tables);
  ByteVector file = headers(tree.size(), wide);
  append(file, tree);
  return file;
}

}  // namespace vel::test
