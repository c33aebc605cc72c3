// The published mapping of a code page as its file has it, read without the generator's help.
#pragma once

#include <map>
#include <string>
#include <vector>

/// Positions are bytes, pairs lead * 256 + trail, or units.
struct MappingFile {
  explicit MappingFile(int number);

  /// All files.
  static std::vector<MappingFile> all(const std::string& kind);

  int ccsid;
  std::map<std::string, std::string> head;
  bool isEbcdic = false;
  std::vector<bool> isLead = std::vector<bool>(256);
  std::vector<unsigned int> bytes;  ///< the unit for each
  std::vector<unsigned int> pairs = std::vector<unsigned int>(0x10000, 0xFFFD);
  /// The byte for each unit, also by a fallback; else the substitution byte.
  std::vector<unsigned int> units;

 private:
  void takeHead();
  void takeLine(const std::string& section, const std::string& line);
};
