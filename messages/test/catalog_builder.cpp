// Writes the layouts of message tables and PE files without the constants of the parsers, so that a wrong
// offset there is noticed.

#include "messages/test/catalog_builder.h"

namespace vel::test {
namespace {

constexpr std::uint32_t kSectionAddress = 0x1000;

constexpr std::size_t kDirectoryHeaderSize = 16;
constexpr std::size_t kDirectoryEntrySize = 8;
constexpr std::size_t kDataEntrySize = 16;

/// The directories of types, IDs and languages, then the data entries (the tables' addresses and sizes), then
/// the tables.
Bytes resourceTree(const TestTables& tables) {
  constexpr std::size_t kIdDirectoryOffset = kDirectoryHeaderSize + kDirectoryEntrySize;
  std::size_t count = 0;
  for (const auto& [id, languages] : tables) count += languages.size();
  std::size_t languageDirectoryOffset =
      kIdDirectoryOffset + kDirectoryHeaderSize + kDirectoryEntrySize * tables.size();
  std::size_t dataEntryOffset =
      languageDirectoryOffset + kDirectoryHeaderSize * tables.size() + kDirectoryEntrySize * count;
  const std::size_t tablesOffset = dataEntryOffset + kDataEntrySize * count;
  Bytes idEntries, languageDirectories, dataEntries, contents;
  for (const auto& [id, languages] : tables) {
    idEntries.add32(id).add32(kDirectoryFlag + languageDirectoryOffset);
    languageDirectories.addZeros(14).add16(languages.size());
    languageDirectoryOffset += kDirectoryHeaderSize + kDirectoryEntrySize * languages.size();
    for (const auto& [language, table] : languages) {
      languageDirectories.add32(language).add32(dataEntryOffset);
      dataEntries.add32(kSectionAddress + tablesOffset + contents.size()).add32(table.size()).addZeros(8);
      contents.add(table);
      dataEntryOffset += kDataEntrySize;
    }
  }
  Bytes tree;
  tree.addZeros(14).add16(1).add32(11).add32(kDirectoryFlag + kIdDirectoryOffset);
  tree.addZeros(14).add16(tables.size());
  return tree.add(idEntries).add(languageDirectories).add(dataEntries).add(contents);
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

Bytes messageEntry(const std::string& text, bool unicode) {
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
    entries.add(messageEntry(text, unicode));
  }
  return blocks.add(entries);
}

Bytes libraryFile(const TestTables& tables, bool isPe32Plus) {
  constexpr std::size_t kPage = 0x1000;
  const Bytes tree = resourceTree(tables);
  const std::size_t imageSize = kSectionAddress + (tree.size() + kPage - 1) / kPage * kPage;
  // DOS header: its field at 0x3C, e_lfanew, is the offset of the PE header.
  Bytes file = {'M', 'Z'};
  file.addZeros(0x3A).add32(0x40);
  // PE header: signature, machine, number of sections, ..., size of the optional header, characteristics.
  file.add32(0x4550).add16(isPe32Plus ? 0x8664 : 0x14C).add16(1);
  file.addZeros(12).add16(isPe32Plus ? 240 : 224).add16(0x2002);
  // Optional header: magic, ..., section and file alignment, ..., sizes of the image and of the headers.
  file.add16(isPe32Plus ? 0x20B : 0x10B).addZeros(30).add32(kPage).add32(kTreeOffset);
  file.addZeros(16).add32(imageSize).add32(kTreeOffset).addZeros(isPe32Plus ? 44 : 28);
  // Data directories: their number, exports and imports, resources, 13 more.
  file.add32(16).addZeros(16).add32(kSectionAddress).add32(tree.size()).addZeros(std::size_t{13} * 8);
  // Section header: name, virtual size and address, raw size and offset, ...
  file.add({'.', 'r', 's', 'r', 'c', 0, 0, 0});
  file.add32(tree.size()).add32(kSectionAddress).add32(tree.size()).add32(kTreeOffset);
  return file.addZeros(kTreeOffset - file.size()).add(tree);
}

Bytes libraryOfSharedBranches(const Bytes& table, std::uint32_t idCount, std::uint32_t languageCount) {
  // Offsets in the tree and in the file, as libraryFile() writes them.
  constexpr std::uint32_t kDataEntryInTree = 72, kIdDirectoryLinkInTree = 20;
  constexpr std::uint32_t kSectionSizesInFile = 0x150, kImageSizeInFile = 0x90;
  Bytes file = libraryFile({{1, {{0x409, table}}}});
  const auto sizeOfTree = [&file] { return static_cast<std::uint32_t>(file.size()) - kTreeOffset; };
  const std::uint32_t idDirectory = sizeOfTree();
  const std::uint32_t languageDirectory = idDirectory + 16 + 8 * idCount;
  file.put32(kTreeOffset + kIdDirectoryLinkInTree, kDirectoryFlag + idDirectory);
  const auto addDirectory = [&file](std::uint32_t count, std::uint32_t target) {
    file.addZeros(14).add16(count);
    for (std::uint32_t i = 1; i <= count; ++i) file.add32(i).add32(target);
  };
  addDirectory(idCount, kDirectoryFlag + languageDirectory);
  addDirectory(languageCount, kDataEntryInTree);
  const std::uint32_t size = sizeOfTree();
  for (const std::uint32_t field : {kSectionSizesInFile, kSectionSizesInFile + 8}) file.put32(field, size);
  file.put32(kImageSizeInFile, kSectionAddress + size);
  return file;
}

}  // namespace vel::test
