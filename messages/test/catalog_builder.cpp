// Layouts are spelled out here once more, independently of the parsers.

#include "messages/test/catalog_builder.h"

namespace vel::test {
namespace {

constexpr std::uint32_t kSectionAddress = 0x1000;

std::vector<std::vector<TestTable>> groupedByName(const std::vector<TestTable>& tables) {
  std::vector<std::vector<TestTable>> groups;
  for (const TestTable& table : tables) {
    if (groups.empty() || groups.back().front().nameId != table.nameId) groups.emplace_back();
    groups.back().push_back(table);
  }
  return groups;
}

/// Directories of type, names and languages, then the tables' addresses and bytes.
Bytes resourceTree(const std::vector<TestTable>& tables) {
  const auto groups = groupedByName(tables);
  std::size_t directory = 24 + 16 + 8 * groups.size();
  std::size_t entry = directory + 16 * groups.size() + 8 * tables.size();
  std::size_t data = entry + 16 * tables.size();
  Bytes names, languages, entries;
  for (const auto& group : groups) {
    names.add32(group.front().nameId).add32(kDirectory + directory);
    languages.addZeros(14).add16(group.size());
    directory += 16 + 8 * group.size();
    for (const TestTable& table : group) {
      languages.add32(table.language).add32(entry);
      entries.add32(kSectionAddress + data).add32(table.data.size()).addZeros(8);
      entry += 16;
      data += table.data.size();
    }
  }
  Bytes tree;
  tree.addZeros(14).add16(1).add32(11).add32(kDirectory + 24).addZeros(14).add16(groups.size());
  tree.add(names).add(languages).add(entries);
  for (const TestTable& table : tables) tree.add(table.data);
  return tree;
}

}  // namespace

Bytes& Bytes::add16(std::size_t value) {
  push_back(static_cast<std::uint8_t>(value));
  push_back(static_cast<std::uint8_t>(value >> 8));
  return *this;
}

Bytes& Bytes::add(const std::vector<std::uint8_t>& more) {
  insert(end(), more.begin(), more.end());
  return *this;
}

void Bytes::put32(std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

Bytes tableEntry(const std::string& text, bool unicode) {
  Bytes bytes;
  for (const char c : text + '\0') bytes.add({static_cast<std::uint8_t>(c)}).addZeros(unicode ? 1 : 0);
  bytes.addZeros((4 - bytes.size() % 4) % 4);
  return Bytes().add16(bytes.size() + 4).add16(unicode ? 1 : 0).add(bytes);
}

Bytes messageTable(const std::vector<TestMessage>& messages) {
  Bytes blocks, entries;
  blocks.add32(messages.size());
  for (const auto& [id, text, unicode] : messages) {
    blocks.add32(id).add32(id).add32(4 + 12 * messages.size() + entries.size());
    entries.add(tableEntry(text, unicode));
  }
  return blocks.add(entries);
}

Bytes libraryFile(const std::vector<TestTable>& tables, bool wide) {
  const Bytes tree = resourceTree(tables);
  Bytes file = {'M', 'Z'};
  file.addZeros(0x3A).add32(0x40).add32(0x4550).add16(wide ? 0x8664 : 0x14C).add16(1);
  file.addZeros(12).add16(wide ? 240 : 224).add16(0x2000).add16(wide ? 0x20B : 0x10B);
  file.addZeros(wide ? 106 : 90).add32(16).addZeros(16).add32(kSectionAddress).add32(tree.size());
  file.addZeros(std::size_t{13} * 8).add({'.', 'r', 's', 'r', 'c', 0, 0, 0});
  file.add32(tree.size()).add32(kSectionAddress).add32(tree.size()).add32(kTreeOffset);
  return file.addZeros(kTreeOffset - file.size()).add(tree);
}

}  // namespace vel::test
