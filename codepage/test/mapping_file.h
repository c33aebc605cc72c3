// The published mapping of a code page, parsed independently of the generator.
#pragma once

#include <map>
#include <string>
#include <vector>

/// Indexes are bytes, pairs as lead * 256 + trail, or units.
struct MappingFile {
  explicit MappingFile(int number);

  /// Reads all files of a kind.
  static std::vector<MappingFile> all(const std::string& kind);

  int ccsid;
  std::map<std::string, std::string> head;
  bool isEbcdic = false;
  std::vector<bool> isLead = std::vector<bool>(256);
  std::vector<unsigned int> bytes;  ///< the unit for each byte
  std::vector<unsigned int> pairs = std::vector<unsigned int>(0x10000, 0xFFFD);
  /// The byte for each unit, fallbacks included; the substitution byte for unmappable units.
  std::vector<unsigned int> units;

 private:
  void parseHead();
  void parseLine(const std::string& section, const std::string& line);
};
