// Builds message tables and library files byte by byte, so that tests can use layouts that no compiler would
// write.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vel::test {

/// Bytes that grow at their end; numbers are little-endian.
class Bytes : public std::vector<std::uint8_t> {
 public:
  using vector::vector;
  Bytes& add16(std::size_t value);
  Bytes& add32(std::size_t value) { return add16(value).add16(value >> 16); }
  Bytes& add(const std::vector<std::uint8_t>& more);
  Bytes& addZeros(std::size_t count) { return add(Bytes(count)); }
  void put32(std::size_t offset, std::uint32_t value);
};

struct TestMessage {
  std::uint32_t id;
  std::string text;  ///< ASCII
  bool unicode = false;
};

/// Message tables by resource ID and LANGID.
using TestTables = std::map<std::uint32_t, std::map<std::uint32_t, Bytes>>;

/// Returns the entry of one message as the message compiler writes it: NUL-terminated and padded to four
/// bytes.
Bytes messageEntry(const std::string& text, bool unicode = false);

/// Returns a valid table with a block for each message. Pass the messages in the order of their ids.
Bytes messageTable(const std::vector<TestMessage>& messages);

/// Returns a library file (PE32+ for 64-bit, otherwise PE32) whose only section holds these tables.
Bytes libraryFile(const TestTables& tables, bool isPe32Plus = true);

/// Returns a file in which all resource IDs share one directory of languages, all of which share one table.
Bytes libraryOfSharedBranches(const Bytes& table, std::uint32_t idCount, std::uint32_t languageCount);

/// The file offset of the resource tree in libraryFile().
constexpr std::uint32_t kTreeOffset = 0x200;

/// Set in the offset of a directory in the resource tree, clear in that of a data entry.
constexpr std::uint32_t kDirectoryFlag = 0x80000000;

}  // namespace vel::test
