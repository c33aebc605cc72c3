// The layouts are repeated here, independently of the parsers.

#include "messages/test/catalog_builder.h"

namespace vel::test {
namespace {

constexpr std::uint32_t kSectionAddress = 0x1000;

/// Directories of type, names and languages, then the tables' addresses and bytes.
Bytes resourceTree(const TestTables& tables) {
  std::size_t count = 0;
  for (const auto& [name, languages] : tables) count += languages.size();
  std::size_t directory = 24 + 16 + 8 * tables.size();
  std::size_t entry = directory + 16 * tables.size() + 8 * count;
  const std::size_t data = entry + 16 * count;
  Bytes names, directories, entries, texts;
  for (const auto& [name, languages] : tables) {
    names.add32(name).add32(kDirectory + directory);
    directories.addZeros(14).add16(languages.size());
    directory += 16 + 8 * languages.size();
    for (const auto& [language, table] : languages) {
      directories.add32(language).add32(entry);
      entries.add32(kSectionAddress + data + texts.size()).add32(table.size()).addZeros(8);
      texts.add(table);
      entry += 16;
    }
  }
  Bytes tree;
  tree.addZeros(14).add16(1).add32(11).add32(kDirectory + 24).addZeros(14).add16(tables.size());
  return tree.add(names).add(directories).add(entries).add(texts);
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

Bytes libraryFile(const TestTables& tables, bool wide) {
  constexpr std::size_t kPage = 0x1000;
  const Bytes tree = resourceTree(tables);
  const std::size_t imageSize = kSectionAddress + (tree.size() + kPage - 1) / kPage * kPage;
  Bytes file = {'M', 'Z'};
  file.addZeros(0x3A).add32(0x40).add32(0x4550).add16(wide ? 0x8664 : 0x14C).add16(1);
  file.addZeros(12).add16(wide ? 240 : 224).add16(0x2002).add16(wide ? 0x20B : 0x10B);
  file.addZeros(30).add32(kPage).add32(kTreeOffset).addZeros(16).add32(imageSize).add32(kTreeOffset);
  file.addZeros(wide ? 44 : 28).add32(16).addZeros(16).add32(kSectionAddress).add32(tree.size());
  file.addZeros(std::size_t{13} * 8).add({'.', 'r', 's', 'r', 'c', 0, 0, 0});
  file.add32(tree.size()).add32(kSectionAddress).add32(tree.size()).add32(kTreeOffset);
  return file.addZeros(kTreeOffset - file.size()).add(tree);
}

Bytes libraryOfSharedBranches(const Bytes& table, std::uint32_t names, std::uint32_t languages) {
  constexpr std::uint32_t kDataEntry = 72, kSectionSizes = 0x150, kImageSize = 0x90;
  Bytes file = libraryFile({{1, {{0x409, table}}}});
  const auto nameDirectory = static_cast<std::uint32_t>(file.size()) - kTreeOffset;
  const std::uint32_t languageDirectory = nameDirectory + 16 + 8 * names;
  file.put32(kTreeOffset + 20, kDirectory + nameDirectory);
  const auto addDirectory = [&file](std::uint32_t count, std::uint32_t target) {
    file.addZeros(14).add16(count);
    for (std::uint32_t i = 1; i <= count; ++i) file.add32(i).add32(target);
  };
  addDirectory(names, kDirectory + languageDirectory);
  addDirectory(languages, kDataEntry);
  const auto size = static_cast<std::uint32_t>(file.size()) - kTreeOffset;
  for (const std::uint32_t field : {kSectionSizes, kSectionSizes + 8}) file.put32(field, size);
  file.put32(kImageSize, kSectionAddress + size);
  return file;
}

}  // namespace vel::test
