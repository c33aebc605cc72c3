// The published mapping of a code page as its file has it, read without the generator's help.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class MappingFile {
 public:
  explicit MappingFile(int ccsid);

  /// The CCSIDs of all files.
  static std::vector<int> singleByte();
  static std::vector<int> doubleByte();

  bool isEbcdic() const { return head_.at("family") == "ebcdic"; }
  bool isLead(unsigned int byte) const;
  /// The unit for one byte, or for lead * 256 + trail.
  unsigned int unitOfByte(unsigned int byte) const;
  unsigned int unitOfPair(unsigned int pair) const;
  /// The byte for a unit, also by a fallback; the substitution byte when there is none.
  unsigned int byteOfUnit(unsigned int unit) const;

 private:
  void take(const std::string& section, const std::string& line);

  std::map<std::string, std::string> head_;
  std::map<unsigned int, unsigned int> bytes_;
  std::map<unsigned int, unsigned int> pairs_;
  std::map<unsigned int, unsigned int> units_;
};
