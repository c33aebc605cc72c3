#include "codepage/test/mapping_file.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

unsigned int fromHex(const std::string& text) {
  return static_cast<unsigned int>(std::stoul(text, nullptr, 16));
}

}  // namespace

std::vector<MappingFile> MappingFile::all(const std::string& kind) {
  std::vector<MappingFile> files;
  for (const auto& entry : std::filesystem::directory_iterator(VEL_TEST_DATA "mappings")) {
    const std::string name = entry.path().stem().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    MappingFile file(std::stoi(name));
    if (file.head["kind"] == kind) files.push_back(std::move(file));
  }
  return files;
}

MappingFile::MappingFile(int number) : ccsid(number) {
  std::ifstream file(VEL_TEST_DATA "mappings/" + std::to_string(number) + ".txt");
  std::string section;
  for (std::string line; std::getline(file, line);) {
    const std::size_t tab = line.find('\t');
    if (line.front() == '[' && section.empty()) parseHead();
    if (line.front() == '[')
      section = line;
    else if (tab != std::string::npos)
      head[line.substr(0, tab)] = line.substr(tab + 1);
    else
      parseLine(section, line);
  }
}

void MappingFile::parseHead() {
  isEbcdic = head["family"] == "ebcdic";
  bytes.assign(256, head.contains("unmapped-single") ? fromHex(head["unmapped-single"]) : 0xFFFD);
  units.assign(0x10000, fromHex(head["substitution"]));
  std::istringstream ranges(isEbcdic ? "" : head["lead-bytes"]);
  for (std::string range; ranges >> range;)
    for (unsigned int lead = fromHex(range); lead <= fromHex(range.substr(range.size() - 2)); ++lead)
      isLead[lead] = true;
}

void MappingFile::parseLine(const std::string& section, const std::string& line) {
  std::istringstream words(line);
  std::string start;
  words >> start;
  const bool isByte = start.size() == 3;
  unsigned int position = fromHex(start);
  for (std::string word; words >> word;) {
    // "a-b" is a range, "a+b" a sequence, which is not one unit.
    const bool isRun = word.find('-') != std::string::npos;
    const bool isUnit = word.find('+') == std::string::npos && (isRun || word.size() <= 4);
    const unsigned int first = isUnit ? fromHex(word) : 0xFFFD;
    const unsigned int last = isRun ? fromHex(word.substr(word.find('-') + 1)) : first;
    for (unsigned int value = first; value <= last; ++value, ++position) {
      if (section == "[round-trip]" || section == "[to-unicode]")
        (isByte ? bytes : pairs).at(position) = value;
      if (section == "[round-trip]" && isByte) units.at(value) = position;
      if (section == "[from-unicode]") units.at(position) = value;
    }
  }
}
