// Parses a library file in the PE format (published as "PE Format" in the Windows documentation) as far as
// its message tables: headers, sections, resource tree.
//
//   file   0      DOS header         at 0x3C the offset of the next one
//                 PE header          "PE", machine, number of sections, characteristics
//                 optional header    sizes, and the RVA of the resource tree in data directory 2
//                 section table      40 bytes for each section: where it is in the file and in memory
//                 sections           .rsrc among them, with the resource tree and the message tables
//
// The file addresses its contents in two ways. The resource tree has offsets from its own start; the tree
// itself and the tables have RVAs, addresses relative to where the loader maps the file, which
// rvaToFileOffset() translates with the section table, because the file is read here without being mapped.
//
// The file may be crafted. Reads go through ByteView, which checks bounds. The tree has three levels by
// definition, so no link can make the walk recurse. Directories may share entries and tables may share bytes,
// so the walk counts both and ends when there are more than a valid file can have.

#include "messages/portable_executable.h"

#include <algorithm>

#include "messages/message_resource.h"

namespace vel::messages {
namespace {

// Offsets of fields, in bytes, and the values that matter here.
constexpr std::uint16_t kDosSignature = 0x5A4D;     // "MZ"
constexpr std::uint32_t kPeSignature = 0x4550;      // "PE", two zero bytes
constexpr std::uint64_t kHeaderOffsetField = 0x3C;  // in the DOS header
// In the PE header, counted from its signature.
constexpr std::uint64_t kMachineField = 4;
constexpr std::uint64_t kSectionCountField = 6;
constexpr std::uint64_t kOptionalHeaderSizeField = 20;
constexpr std::uint64_t kCharacteristicsField = 22;
constexpr std::uint64_t kOptionalHeaderField = 24;
constexpr std::uint16_t kExecutableImage = 2;  // characteristic of a file that linked without errors
// In the optional header.
constexpr std::uint16_t kMagic32 = 0x10B;
constexpr std::uint16_t kMagic64 = 0x20B;
constexpr std::uint64_t kSizeOfImageField = 56;
constexpr std::uint64_t kSizeOfHeadersField = 60;
constexpr std::uint64_t kDataDirectoryCount32 = 92;
constexpr std::uint64_t kDataDirectoryCount64 = 108;
constexpr std::uint32_t kResourceDirectory = 2;  // index of the data directory
constexpr std::uint64_t kDataDirectorySize = 8;
constexpr std::uint64_t kSectionSize = 40;
constexpr std::uint32_t kMaxSections = 96;  // the Windows loader's own limit

// In the resource tree.
constexpr std::uint64_t kDirectoryHeaderSize = 16;
constexpr std::uint64_t kDirectoryEntrySize = 8;
constexpr std::uint32_t kHighBit = 0x80000000;  // see DirectoryEntry
constexpr std::uint32_t kMessageTableType = 11;
// Languages may share a table's bytes. The walk ends when all tables together are this many times the file's
// size.
constexpr std::uint64_t kMaxSharing = 64;

}  // namespace

PortableExecutable::PortableExecutable(const std::uint8_t* image, std::size_t sizeInBytes) noexcept
    : file_(image, sizeInBytes) {
  valid_ = readHeaders();
  if (resources_ != 0) findMessageTableDirectory();
}

bool PortableExecutable::readHeaders() noexcept {
  std::uint16_t dosSignature = 0;
  std::uint32_t header = 0;
  std::uint32_t signature = 0;
  std::uint16_t machine = 0;
  std::uint16_t sectionCount = 0;
  std::uint16_t optionalSize = 0;
  std::uint16_t characteristics = 0;
  const bool complete = file_.read16(0, dosSignature) && file_.read32(kHeaderOffsetField, header) &&
                        file_.read32(header, signature) && file_.read16(header + kMachineField, machine) &&
                        file_.read16(header + kSectionCountField, sectionCount) &&
                        file_.read16(header + kOptionalHeaderSizeField, optionalSize) &&
                        file_.read16(header + kCharacteristicsField, characteristics);
  if (!complete || dosSignature != kDosSignature || signature != kPeSignature) return false;
  if (machine == 0 || (characteristics & kExecutableImage) == 0 || sectionCount > kMaxSections) return false;

  const std::uint64_t optionalHeader = header + kOptionalHeaderField;
  OptionalHeader optional{};
  if (!readOptionalHeader(optionalHeader, optionalSize, optional)) return false;
  sectionTable_ = optionalHeader + optionalSize;
  sectionCount_ = sectionCount;
  if (!hasValidSections(optional)) return false;
  const std::uint32_t rva = optional.resourceRva;
  if (rva != 0 && !rvaToFileOffset(rva, kDirectoryHeaderSize, resources_)) resources_ = 0;
  return true;
}

/// Reads the fields of the optional header, whose 32-bit and 64-bit forms differ in size before the data
/// directories. A file without resources is valid: resourceRva stays 0.
bool PortableExecutable::readOptionalHeader(std::uint64_t offset, std::uint16_t size,
                                            OptionalHeader& header) const noexcept {
  std::uint16_t magic = 0;
  if (!file_.read16(offset, magic) || (magic != kMagic32 && magic != kMagic64)) return false;
  const std::uint64_t countField = magic == kMagic32 ? kDataDirectoryCount32 : kDataDirectoryCount64;
  const std::uint64_t resourceField = countField + 4 + kResourceDirectory * kDataDirectorySize;
  std::uint32_t count = 0;
  const bool complete = countField + 4 <= size &&
                        file_.read32(offset + kSizeOfImageField, header.sizeOfImage) &&
                        file_.read32(offset + kSizeOfHeadersField, header.sizeOfHeaders) &&
                        file_.read32(offset + countField, count);
  if (!complete) return false;
  if (count <= kResourceDirectory) return true;
  return resourceField + kDataDirectorySize <= size &&
         file_.read32(offset + resourceField, header.resourceRva);
}

/// Reads zeros outside of the file; hasValidSections() checks first that the section table is in it.
PortableExecutable::Section PortableExecutable::sectionAt(std::uint32_t index) const noexcept {
  const std::uint64_t offset = sectionTable_ + index * kSectionSize;
  Section section{};
  static_cast<void>(file_.read32(offset + 8, section.virtualSize));
  static_cast<void>(file_.read32(offset + 12, section.virtualAddress));
  static_cast<void>(file_.read32(offset + 16, section.sizeOfRawData));
  static_cast<void>(file_.read32(offset + 20, section.pointerToRawData));
  return section;
}

/// Returns whether the headers, including the section table, and all sections are in the file, and whether
/// the sections follow one another in memory within the image. The padding of the raw data after a section's
/// virtual size may be missing.
bool PortableExecutable::hasValidSections(const OptionalHeader& header) const noexcept {
  const std::uint64_t tableEnd = sectionTable_ + sectionCount_ * kSectionSize;
  if (tableEnd > header.sizeOfHeaders || !file_.holds(0, header.sizeOfHeaders)) return false;
  std::uint64_t end = header.sizeOfHeaders;
  for (std::uint32_t index = 0; index < sectionCount_; ++index) {
    const Section section = sectionAt(index);
    if (section.virtualAddress < end) return false;
    const std::uint32_t size = section.virtualSize != 0 ? section.virtualSize : section.sizeOfRawData;
    const std::uint32_t used = std::min(size, section.sizeOfRawData);
    if (used != 0 && !file_.holds(section.pointerToRawData, used)) return false;
    end = std::uint64_t{section.virtualAddress} + size;
  }
  return end <= header.sizeOfImage;
}

/// Translates an RVA into an offset in the file. Returns false unless the `size` bytes there are in one
/// section and in the file.
bool PortableExecutable::rvaToFileOffset(std::uint32_t rva, std::uint32_t size,
                                         std::uint64_t& fileOffset) const noexcept {
  for (std::uint32_t index = 0; index < sectionCount_; ++index) {
    const Section section = sectionAt(index);
    if (rva < section.virtualAddress || rva - section.virtualAddress >= section.sizeOfRawData) continue;
    const std::uint32_t distance = rva - section.virtualAddress;
    fileOffset = std::uint64_t{section.pointerToRawData} + distance;
    return size <= section.sizeOfRawData - distance && file_.holds(fileOffset, size);
  }
  return false;
}

/// Returns the number of entries of a directory, those with a name and those with an ID. Its header is within
/// the file.
std::uint32_t PortableExecutable::entryCount(std::uint64_t directory) const noexcept {
  std::uint16_t named = 0;
  std::uint16_t withId = 0;
  file_.read16(directory + 12, named);
  file_.read16(directory + 14, withId);
  return std::uint32_t{named} + withId;
}

bool PortableExecutable::readEntry(std::uint64_t directory, std::uint32_t index,
                                   DirectoryEntry& entry) const noexcept {
  const std::uint64_t offset = directory + kDirectoryHeaderSize + index * kDirectoryEntrySize;
  return file_.read32(offset, entry.id) && file_.read32(offset + 4, entry.offset);
}

/// Returns false if the entry has a name instead of an ID, or is not a directory within the file.
bool PortableExecutable::findSubdirectory(const DirectoryEntry& entry,
                                          std::uint64_t& directory) const noexcept {
  if ((entry.id & kHighBit) != 0 || (entry.offset & kHighBit) == 0) return false;
  directory = resources_ + (entry.offset & ~kHighBit);
  return file_.holds(directory, kDirectoryHeaderSize);
}

void PortableExecutable::findMessageTableDirectory() noexcept {
  const std::uint32_t count = entryCount(resources_);
  DirectoryEntry entry{};
  for (std::uint32_t index = 0; index < count && readEntry(resources_, index, entry); ++index)
    if (entry.id == kMessageTableType && findSubdirectory(entry, messageTables_)) return;
  messageTables_ = 0;
}

/// Counts a directory entry. Returns false if there were more than fit into the file: then directories
/// overlap.
bool PortableExecutable::mayVisitAnother(Cursor& cursor) const noexcept {
  return cursor.visited++ < file_.size() / kDirectoryEntrySize;
}

bool PortableExecutable::nextMessageTable(Cursor& cursor, MessageTable& table) const noexcept {
  if (messageTables_ == 0) return false;
  const std::uint32_t count = entryCount(messageTables_);
  DirectoryEntry resource{};
  for (; cursor.idIndex < count && readEntry(messageTables_, cursor.idIndex, resource); ++cursor.idIndex) {
    if (!mayVisitAnother(cursor)) return false;
    if (nextLanguage(cursor, resource, table)) return true;
    cursor.languageIndex = 0;
  }
  return false;
}

bool PortableExecutable::nextLanguage(Cursor& cursor, const DirectoryEntry& resource,
                                      MessageTable& table) const noexcept {
  std::uint64_t directory = 0;
  if (!findSubdirectory(resource, directory)) return false;
  const std::uint32_t count = entryCount(directory);
  while (cursor.languageIndex < count && mayVisitAnother(cursor)) {
    DirectoryEntry language{};
    if (!readEntry(directory, cursor.languageIndex++, language)) return false;
    table.id = resource.id;
    if (!readDataEntry(language, table)) continue;
    // Callers read every table they are given, so the time they need is bounded here.
    cursor.tableBytes += table.sizeInBytes;
    return cursor.tableBytes <= kMaxSharing * file_.size();
  }
  return false;
}

/// Finds the table of a language by its data entry, a leaf of the tree: {RVA, size, code page, reserved}.
bool PortableExecutable::readDataEntry(const DirectoryEntry& language, MessageTable& table) const noexcept {
  if (((language.id | language.offset) & kHighBit) != 0) return false;
  std::uint32_t rva = 0;
  std::uint32_t size = 0;
  std::uint64_t data = 0;
  const std::uint64_t entry = resources_ + language.offset;
  if (!file_.read32(entry, rva) || !file_.read32(entry + 4, size) || !rvaToFileOffset(rva, size, data))
    return false;
  table.language = language.id;
  table.data = file_.at(data);
  table.sizeInBytes = size;
  return true;
}

bool PortableExecutable::findMessageTable(std::uint32_t language, MessageTable& table) const noexcept {
  const auto candidates = languageCandidates(language);
  auto best = candidates.end();
  Cursor cursor;
  MessageTable current{};
  while (nextMessageTable(cursor, current)) {
    if (current.id != kMessageTableId) continue;
    // Only candidates better than the best so far are searched.
    const auto rank = std::find(candidates.begin(), best, current.language);
    if (rank == best) continue;
    best = rank;
    table = current;
  }
  return best != candidates.end();
}

}  // namespace vel::messages
