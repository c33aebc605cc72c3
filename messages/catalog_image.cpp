// Writes a resource-only library:
//
//   DOS header | PE header | optional header | section header | padding | resource tree | tables | padding
//
// The resource tree has three levels, see portable_executable.h. Nothing in the file depends on the time, the
// name or the system.
#include "messages/catalog_image.h"

#include "messages/portable_executable.h"

namespace vel::messages {
namespace {

constexpr std::uint64_t kImageBase = 0x180000000;
constexpr std::size_t kSectionAlignment = 0x1000;
constexpr std::size_t kFileAlignment = 0x200;
constexpr std::size_t kSectionAddress = kSectionAlignment;
constexpr std::size_t kHeadersSize = kFileAlignment;

constexpr std::size_t kPeHeaderOffset = 0x40;
constexpr std::size_t kOptionalHeaderSize = 240;
constexpr std::size_t kDataDirectoryCount = 16;

constexpr std::size_t kDirectoryHeaderSize = 16;
constexpr std::size_t kDirectoryEntrySize = 8;
constexpr std::size_t kDataEntrySize = 16;
constexpr std::uint32_t kIsDirectory = 0x80000000;
constexpr std::uint32_t kMessageTableType = 11;
/// The directories of types and of resource IDs have one entry each.
constexpr std::size_t kSmallDirectorySize = kDirectoryHeaderSize + kDirectoryEntrySize;

constexpr std::size_t roundUp(std::size_t size, std::size_t alignment) {
  return (size + alignment - 1) / alignment * alignment;
}

/// Returns the size of the resource tree without the tables.
std::size_t treeSize(std::size_t tableCount) {
  return 2 * kSmallDirectorySize + kDirectoryHeaderSize + (kDirectoryEntrySize + kDataEntrySize) * tableCount;
}

void writeDosHeader(ByteWriter& out) {
  out.add16(0x5A4D);  // "MZ"
  out.addZeros(0x3A);
  out.add32(kPeHeaderOffset);
}

void writePeHeader(ByteWriter& out) {
  out.add32(0x4550);  // "PE"
  out.add16(0x8664);  // machine: x86-64
  out.add16(1);       // sections
  out.addZeros(12);   // time, symbol table, symbols
  out.add16(kOptionalHeaderSize);
  out.add16(0x2022);  // executable, large addresses, library
}

void writeOptionalHeader(ByteWriter& out, std::size_t sectionSize) {
  out.add16(0x20B);     // 64-bit
  out.addZeros(2 + 4);  // version of the linker, size of the code
  out.add32(roundUp(sectionSize, kFileAlignment));
  out.addZeros(4 + 4);  // uninitialized data, entry point
  out.add32(kSectionAddress);
  out.add64(kImageBase);
  out.add32(kSectionAlignment);
  out.add32(kFileAlignment);
  out.add32(6);     // version of the operating system: 6.0
  out.addZeros(4);  // version of the image
  out.add32(6);     // version of the subsystem: 6.0
  out.addZeros(4);
  out.add32(kSectionAddress + roundUp(sectionSize, kSectionAlignment));
  out.add32(kHeadersSize);
  out.addZeros(4);    // checksum, which is for drivers only
  out.add16(2);       // subsystem: graphical
  out.add16(0x0160);  // high-entropy addresses, dynamic base, no execution of data
  for (const unsigned size : {0x100000U, 0x1000U, 0x100000U, 0x1000U}) out.add64(size);  // stack and heap
  out.addZeros(4);
  out.add32(kDataDirectoryCount);
  out.addZeros(16);  // exports, imports
  out.add32(kSectionAddress);
  out.add32(sectionSize);
  out.addZeros((kDataDirectoryCount - 3) * 8);
}

void writeSectionHeader(ByteWriter& out, std::size_t sectionSize) {
  constexpr std::uint8_t kName[8] = {'.', 'r', 's', 'r', 'c'};
  out.add(kName, sizeof kName);
  out.add32(sectionSize);
  out.add32(kSectionAddress);
  out.add32(roundUp(sectionSize, kFileAlignment));
  out.add32(kHeadersSize);
  out.addZeros(12);       // relocations and line numbers
  out.add32(0x40000040);  // initialized data, readable
  out.align(kHeadersSize);
}

void writeDirectoryHeader(ByteWriter& out, std::size_t count) {
  // Characteristics, time, version, and the number of entries with a name.
  out.addZeros(14);
  out.add16(count);
}

void writeTree(ByteWriter& out, const Vector<TableLayout>& tables) {
  writeDirectoryHeader(out, 1);
  out.add32(kMessageTableType);
  out.add32(kIsDirectory + kSmallDirectorySize);
  writeDirectoryHeader(out, 1);
  out.add32(PortableExecutable::kMessageTableId);
  out.add32(kIsDirectory + 2 * kSmallDirectorySize);
  writeDirectoryHeader(out, tables.size());
  std::size_t dataEntry =
      2 * kSmallDirectorySize + kDirectoryHeaderSize + kDirectoryEntrySize * tables.size();
  for (const TableLayout& table : tables) {
    out.add32(table.language);
    out.add32(dataEntry);
    dataEntry += kDataEntrySize;
  }
  std::size_t address = kSectionAddress + treeSize(tables.size());
  for (const TableLayout& table : tables) {
    out.add32(address);
    out.add32(table.sizeInBytes);
    out.addZeros(8);  // code page, reserved
    address += static_cast<std::size_t>(table.sizeInBytes);
  }
}

}  // namespace

bool writeCatalogImage(CatalogTexts& texts, std::size_t maxSize, Vector<std::uint8_t>& out) {
  const Vector<TableLayout> tables = texts.layOut();
  std::uint64_t sectionSize = treeSize(tables.size());
  for (const TableLayout& table : tables) sectionSize += table.sizeInBytes;
  // The number of entries in a directory has 16 bits.
  if (tables.empty() || tables.size() > 0xFFFF || sectionSize > maxSize - kHeadersSize - kFileAlignment)
    return false;
  const auto size = static_cast<std::size_t>(sectionSize);
  out.reserve(kHeadersSize + roundUp(size, kFileAlignment));
  ByteWriter writer(out);
  writeDosHeader(writer);
  writePeHeader(writer);
  writeOptionalHeader(writer, size);
  writeSectionHeader(writer, size);
  writeTree(writer, tables);
  for (const TableLayout& table : tables) texts.write(table, writer);
  writer.align(kFileAlignment);
  return true;
}

}  // namespace vel::messages
