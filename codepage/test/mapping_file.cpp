#include "codepage/test/mapping_file.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

unsigned int fromHex(const std::string& text) {
  return static_cast<unsigned int>(std::stoul(text, nullptr, 16));
}

}  // namespace

std::vector<int> MappingFile::singleByte() {
  return {37,   273,  274,  277,  278,  280,  284,  285,  290,  297,  420,  423,  424,
          437,  500,  737,  819,  833,  836,  838,  850,  852,  870,  871,  875,  891,
          895,  924,  1025, 1026, 1027, 1040, 1041, 1043, 1046, 1088, 1112, 1114, 1115,
          1122, 1123, 1142, 1145, 1155, 1163, 1250, 1252, 9048, 13121};
}

std::vector<int> MappingFile::doubleByte() {
  return {301, 927, 930, 939, 941, 948, 1351, 1394, 4930, 4933, 5039};
}

MappingFile::MappingFile(int ccsid) {
  std::ifstream file(VEL_CODEPAGE_DATA_DIR "/mappings/" + std::to_string(ccsid) + ".txt");
  if (!file) throw std::runtime_error("no mapping of " + std::to_string(ccsid));
  std::string section;
  for (std::string line; std::getline(file, line);) {
    const std::size_t tab = line.find('\t');
    if (line.front() == '[')
      section = line;
    else if (tab != std::string::npos)
      head_[line.substr(0, tab)] = line.substr(tab + 1);
    else
      take(section, line);
  }
}

void MappingFile::take(const std::string& section, const std::string& line) {
  std::istringstream words(line);
  std::string start;
  words >> start;
  const bool isByte = start.size() == 3;
  unsigned int position = fromHex(start);
  for (std::string word; words >> word;) {
    // "a-b" is a run, "a+b" a sequence that no unit can hold.
    const bool isRun = word.find('-') != std::string::npos;
    const bool isUnit = word.find('+') == std::string::npos && (isRun || word.size() <= 4);
    const unsigned int first = isUnit ? fromHex(word) : 0xFFFD;
    const unsigned int last = isRun ? fromHex(word.substr(word.find('-') + 1)) : first;
    for (unsigned int value = first; value <= last; ++value, ++position) {
      if (section == "[round-trip]" || section == "[to-unicode]")
        (isByte ? bytes_ : pairs_)[position] = value;
      if (section == "[round-trip]" && isByte) units_[value] = position;
      if (section == "[from-unicode]") units_[position] = value;
    }
  }
}

bool MappingFile::isLead(unsigned int byte) const {
  std::istringstream ranges(head_.at("lead-bytes"));
  for (std::string range; ranges >> range;)
    if (byte >= fromHex(range.substr(0, 2)) && byte <= fromHex(range.substr(range.size() - 2))) return true;
  return false;
}

unsigned int MappingFile::unitOfByte(unsigned int byte) const {
  const auto found = bytes_.find(byte);
  if (found != bytes_.end()) return found->second;
  const auto unmapped = head_.find("unmapped-single");
  return unmapped == head_.end() ? 0xFFFD : fromHex(unmapped->second);
}

unsigned int MappingFile::unitOfPair(unsigned int pair) const {
  const auto found = pairs_.find(pair);
  return found == pairs_.end() ? 0xFFFD : found->second;
}

unsigned int MappingFile::byteOfUnit(unsigned int unit) const {
  const auto found = units_.find(unit);
  return found == units_.end() ? fromHex(head_.at("substitution")) : found->second;
}
