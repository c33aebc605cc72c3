// Builds message tables and library files byte by byte, so that tests can hold the parsers
// against layouts that no compiler would write.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vel::test {

using ByteVector = std::vector<std::uint8_t>;

struct TestMessage {
  std::uint32_t id;
  std::string text;  ///< ASCII
  bool unicode = false;
};

struct TestBlock {
  std::uint32_t lowId;
  std::uint32_t highId;
  std::uint32_t offset;
};

struct TestTable {
  std::uint32_t nameId;
  std::uint32_t language;
  ByteVector data;
};

void append16(ByteVector& bytes, std::uint32_t value);
void append32(ByteVector& bytes, std::uint32_t value);
/// Overwrites four bytes.
void put32(ByteVector& bytes, std::size_t offset, std::uint32_t value);

/// A table entry as the message compiler writes it: terminated and filled up to four bytes.
ByteVector tableEntry(const TestMessage& message);

/// Count and blocks only, taken as given.
ByteVector blockHeader(const std::vector<TestBlock>& blocks);

/// A sound table; messages in id order, neighbours share a block.
ByteVector messageTable(const std::vector<TestMessage>& messages);

/// A library file whose only section holds these tables, in their order; tables of the same
/// nameId stand next to each other.
ByteVector libraryFile(const std::vector<TestTable>& tables, bool wide = true);

/// Where libraryFile() puts the resource tree.
constexpr std::uint32_t kTreeOffset = 0x200;

}  // namespace vel::test
